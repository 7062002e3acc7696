// Registering, measuring and budgeting of the cases.
#include "support/compare.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <exception>
#include <iostream>

#include "support/report.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr double kBatch = 1e-3;   // least duration of a timed batch, where a call is shorter
constexpr double kCaseCap = 1.0;  // what a case takes when the budget allows
// Before a batch, calls bring back what the other contenders pushed out of the caches. Where the data nearly
// fills the last cache, one call does not settle it: measured against itself, a function then came out up to
// 35 % apart. A slow call needs none: what it finds in the caches is a vanishing part of its time.
constexpr double kWarmUp = 3e-3;
constexpr int kWarmUpCalls = 8;
constexpr double kSlowCall = 0.05;
constexpr int kMinRounds = 3;
constexpr int kMaxRounds = 9;

struct Session {
    Options options;
    bool counting = false;  // only count the selected cases
    int remaining = 0;
    Clock::time_point deadline;
    std::vector<Result> results;
};
Session session;

double since(Clock::time_point start) {
    return Seconds(Clock::now() - start).count();
}

class Contender {
  public:
    Contender(const Call& call, const std::function<void()>& before) : call_(call), before_(before) {}

    okpStatus worst() const { return worst_; }

    // Seconds for some calls, without what has to happen before each.
    double time(int calls) {
        double total = 0;
        if (before_) {
            for (int i = 0; i < calls; ++i) {
                before_();
                const auto start = Clock::now();
                worst_ = std::min(worst_, call_());
                total += since(start);
            }
            return total;
        }
        const auto start = Clock::now();
        for (int i = 0; i < calls; ++i) worst_ = std::min(worst_, call_());
        return since(start);
    }

    // Finds how many calls make a batch. The time of a slow call is kept as the first round's.
    void calibrate() {
        int calls = 1;
        double total = time(calls);
        if (total > kSlowCall) {
            seconds_.push_back(total);
            return;
        }
        while (total < kBatch / 8) total = time(calls *= 2);
        const double perCall = total / calls;
        batch_ = std::max(1, static_cast<int>(std::ceil(kBatch / perCall)));
        warmUp_ = std::clamp(static_cast<int>(std::ceil(kWarmUp / perCall)), 1, kWarmUpCalls);
    }

    void round(size_t number) {
        if (seconds_.size() > number) return;
        time(warmUp_);
        seconds_.push_back(time(batch_) / batch_);
    }

    Timing timing() const { return {median(seconds_), *std::min_element(seconds_.begin(), seconds_.end())}; }

  private:
    Call call_;
    std::function<void()> before_;
    okpStatus worst_ = okpStatusOk;
    int warmUp_ = 0;
    int batch_ = 1;
    std::vector<double> seconds_;
};

// The memcpy that moves as many bytes. Its blocks outlive the case and grow as needed.
Call copyMoving(double bytes) {
    static Image<uint8_t> source({1, 1}), destination({1, 1});
    const int count = std::max(1, static_cast<int>(bytes / 3));
    if (source.size().width < count) {
        source = Image<uint8_t>({count, 1});
        destination = Image<uint8_t>({count, 1});
    }
    return [count] {
        std::memcpy(destination.data(), source.data(), static_cast<size_t>(count));
        benchmark::ClobberMemory();
        return okpStatusOk;
    };
}

// Calls everything once, so that a failure or a disagreement is known before anything is measured.
void check(const Case& c, Contender& ours, Contender& peer, Result& result) {
    const double seconds = ours.time(1);
    if (ours.worst() < 0) {
        result.error = "status " + std::to_string(ours.worst());
        return;
    }
    result.ours = {seconds, seconds};
    result.rounds = 1;
    if (!c.peer) return;
    result.peerName = c.peerName;
    try {
        peer.time(1);
    } catch (const std::exception& e) {
        result.error = std::string("the peer threw: ") + e.what();
        std::replace(result.error.begin(), result.error.end(), '\n', ' ');
        return;
    }
    if (!c.agree) return;
    result.compared = true;
    result.disagreement = c.agree();
}

// Seconds of a cycle, measured on additions that wait for each other: one takes a cycle.
double cycleSeconds() {
    static const double seconds = [] {
        constexpr int kAdditions = 1 << 20;
        double fastest = 1;
        for (int round = 0; round < 20; ++round) {
            const auto start = Clock::now();
            int64_t sum = round;
            for (int i = 0; i < kAdditions / 16; ++i) {
#pragma GCC unroll 16
                for (int j = 0; j < 16; ++j) asm volatile("add $1, %0" : "+r"(sum));
            }
            fastest = std::min(fastest, since(start) / kAdditions);
        }
        return fastest;
    }();
    return seconds;
}

void measure(const Setup& setup, Result& result) {
    const auto start = Clock::now();
    const double share = Seconds(session.deadline - start).count() / std::max(1, session.remaining--);
    const double allotted = std::min(kCaseCap, share);

    imageCount = 0;
    const Case c = setup(result.size);
    result.pixels = c.pixels > 0 ? c.pixels : double(result.size.width) * result.size.height;
    result.bytesMoved = (c.reads + 2 * (c.writes + c.updates)) * result.pixels;

    result.bound = c.cycles * result.pixels * cycleSeconds();

    Contender ours(c.ours, c.before), peer(c.peer, c.beforePeer), copy(copyMoving(result.bytesMoved), {});
    check(c, ours, peer, result);
    if (session.options.smoke || !result.error.empty()) return;

    std::vector<std::pair<Contender*, Timing*>> contenders = {{&ours, &result.ours}};
    if (c.peer) contenders.emplace_back(&peer, &result.peer);
    if (result.bytesMoved > 0) contenders.emplace_back(&copy, &result.copy);

    for (auto& [contender, timing] : contenders) contender->calibrate();
    for (result.rounds = 0; result.rounds < kMaxRounds; ++result.rounds) {
        if (result.rounds >= kMinRounds && since(start) > allotted) break;
        for (auto& [contender, timing] : contenders) contender->round(static_cast<size_t>(result.rounds));
        if (contenders.size() > 1) std::swap(contenders[0], contenders[1]);
    }
    for (auto& [contender, timing] : contenders) *timing = contender->timing();
    if (ours.worst() < 0) result.error = "status " + std::to_string(ours.worst());
}

// Shows nothing: for the pass that counts. Google Benchmark lists to its stream.
class SilentReporter : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>&) override {}
};

class LineReporter : public SilentReporter {
  public:
    void ReportRuns(const std::vector<Run>&) override {
        for (; shown_ < session.results.size(); ++shown_)
            std::cout << consoleLine(session.results[shown_]) << std::endl;
    }

  private:
    size_t shown_ = 0;
};

}  // namespace

Work Work::operator+(const Work& other) const {
    const double scale = elements / other.elements;
    return {elements,
            multiplications + scale * other.multiplications,
            additions + scale * other.additions,
            others + scale * other.others,
            loads + scale * other.loads,
            stores + scale * other.stores};
}

double Work::cyclesPerElement() const {
    const double onVectors = multiplications + additions + others;
    return std::max({multiplications / 2, additions / 2, onVectors / 4, loads / 2, stores,
                     (onVectors + loads + stores) / 6}) /
           elements;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t half = values.size() / 2;
    return values.size() % 2 ? values[half] : (values[half - 1] + values[half]) / 2;
}

void Family::add(const std::string& operation, const Setup& setup, std::span<const RoiSize> sizes) {
    for (const RoiSize size : sizes) {
        Result result;
        result.family = name_;
        result.operation = operation;
        result.size = size;
        const std::string name = name_ + "/" + operation + "/" + result.sizeText();
        const auto body = [=](benchmark::State& state) {
            for (auto _ : state) {
                if (session.counting) {
                    ++session.remaining;
                    state.SetIterationTime(0);
                    continue;
                }
                Result& measured = session.results.emplace_back(result);
                measure(setup, measured);
                state.SetIterationTime(measured.ours.median);
                state.counters["ours_ns_px"] = measured.ours.median / measured.pixels * 1e9;
                state.counters["peer_ns_px"] = measured.peer.median / measured.pixels * 1e9;
                state.counters["memcpy_ns_px"] = measured.copy.median / measured.pixels * 1e9;
                if (!measured.error.empty()) state.SkipWithError(measured.error.c_str());
            }
        };
        benchmark::RegisterBenchmark(name.c_str(), body)->UseManualTime();
    }
}

std::vector<Result> runCases(const Options& options) {
    session.options = options;
    // The first pass counts what Google Benchmark selects, so that the budget can be divided.
    session.counting = true;
    SilentReporter silent;
    benchmark::RunSpecifiedBenchmarks(&silent);
    session.counting = false;
    if (session.remaining == 0) return {};

    session.deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(Seconds(options.budget));
    LineReporter lines;
    benchmark::RunSpecifiedBenchmarks(&lines);
    return session.results;
}

}  // namespace bench
