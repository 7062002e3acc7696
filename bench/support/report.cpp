// The figures as text.
#include "support/report.h"

#include "support/chart.h"

#include <benchmark/benchmark.h>

#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

namespace bench {
namespace {

// Below this the cost of the call itself counts, so times are given per call.
constexpr double kSmall = 64 * 64;

__attribute__((format(printf, 1, 2))) std::string format(const char* pattern, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

bool hasPeer(const Result& r) {
    return r.peer.median > 0;
}
double ratio(const Result& r) {
    return r.peer.median / r.ours.median;
}
double nsPerPixel(const Result& r, const Timing& t) {
    return t.median / r.pixels * 1e9;
}
double gigabytes(const Result& r, const Timing& t) {
    return r.bytesMoved / t.median * 1e-9;
}
double percentOfCopy(const Result& r) {
    return 100 * r.copy.median / r.ours.median;
}

std::string agreement(const Result& r) {
    if (!r.error.empty()) return "**FAILED: " + r.error + "**";
    if (!r.compared) return "";
    return r.disagreement.empty() ? "same" : "**differs: " + r.disagreement + "**";
}

using Description = std::vector<std::pair<std::string, std::string>>;

Description describeMachine() {
    const auto& cpu = benchmark::CPUInfo::Get();
    std::string model = "unknown", line;
    std::ifstream cpuinfo("/proc/cpuinfo");
    while (std::getline(cpuinfo, line)) {
        if (line.starts_with("model name")) model = line.substr(line.find(':') + 2);
    }
    std::string caches;
    for (const auto& cache : cpu.caches) {
        caches += format("%sL%d %s %d KiB", caches.empty() ? "" : ", ", cache.level, cache.type.c_str(),
                         cache.size / 1024);
    }
    char date[64];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "%Y-%m-%d %H:%M UTC", std::gmtime(&now));
#ifdef __clang__
    const char* compiler = "Clang " __clang_version__;
#else
    const char* compiler = "GCC " __VERSION__;
#endif
#ifdef OKPCV_BENCH_OPENCV
    const std::string peer = cv::getVersionString() + ", one thread, " + cv::getCPUFeaturesLine();
#else
    const std::string peer = "not built in";
#endif
    const std::string load = cpu.load_avg.empty() ? "unknown" : format("%.2f", cpu.load_avg[0]);
    return {{"Date", date},
            {"Library", okpcvGetLibVersion()->version},
            {"Processor", format("%s, %d cores", model.c_str(), cpu.num_cpus)},
            {"Caches", caches},
            {"Load at the start", load},
            {"Compiler", compiler},
            {"OpenCV", peer}};
}

const char kPreface[] =
    R"(Every case measures the library (ours), where there is one the same operation of OpenCV (the peer), and a
memcpy, in interleaved rounds on one thread: in each round up to 8 untimed calls, then a timed batch of at
least a millisecond (one call where a call is longer; without untimed calls where one takes over 50 ms).
Times are medians over the rounds. The ratio is the peer's time over ours: above 1 we are faster.
*Results* says whether the two computed the same pixels. Images are aligned to 64 bytes, with steps that are
multiples of 64, on large pages where the system gives them.

GB/s are bytes moved per second. Counted are the bytes that the operation cannot avoid moving: every source
once, destinations that are not read before twice (a store fetches its cache line first), images updated in
place twice (once in, once out). The memcpy beside a case copies so many bytes that it moves as many by the
same count, three for each byte copied. Stores that stream past the caches fetch nothing, in a kernel as in
the C library's memcpy of large blocks, and are counted like the others.

*Bound* is the time that the vector operations of a case take at least, where it was worked out (the
benchmark's source says how), on a core that starts six operations in a cycle: four on vectors of 16 bytes, of
which two can be multiplications and two additions of floats, and among the rest two loads and one store. The
length of a cycle is measured in the same run. *Of it* is our time over the bound.

)";

void writeTable(std::ostream& out, const std::vector<const Result*>& results, bool small) {
    const char* unit = small ? "ns/call" : "ns/px";
    bool any = false, bounds = false;
    for (const Result* r : results) bounds = bounds || (r->bound > 0 && (r->pixels < kSmall) == small);
    for (const Result* r : results) {
        if ((r->pixels < kSmall) != small) continue;
        if (!any) {
            out << format("\n| operation | size | ours %s | peer %s | peer | ratio |", unit, unit)
                << (small ? " memcpy ns/call |" : " ours GB/s | memcpy GB/s | % of memcpy |")
                << (bounds ? " bound | of it |" : "") << " results |\n"
                << "|---|---|--:|--:|---|--:|" << (small ? "--:|" : "--:|--:|--:|")
                << (bounds ? "--:|--:|" : "") << "---|\n";
            any = true;
        }
        const auto time = [&](const Timing& t) {
            return t.median > 0 ? format("%.3g", small ? t.median * 1e9 : nsPerPixel(*r, t)) : "";
        };
        out << "| " << r->operation << " | " << r->sizeText() << " | " << time(r->ours) << " | "
            << time(r->peer) << " | " << r->peerName << " | "
            << (hasPeer(*r) ? format("%.2f", ratio(*r)) : "");
        if (small) {
            out << " | " << time(r->copy);
        } else if (r->copy.median > 0) {
            out << format(" | %.1f | %.1f | %.0f", gigabytes(*r, r->ours), gigabytes(*r, r->copy),
                          percentOfCopy(*r));
        } else {
            out << " | | |";
        }
        if (r->bound > 0) {
            out << " | " << time({r->bound, r->bound}) << format(" | %.2f", r->ours.median / r->bound);
        } else if (bounds) {
            out << " | |";
        }
        out << " | " << agreement(*r) << " |\n";
    }
}

struct Summary {
    std::vector<double> ratios;
    std::string slower;  // the cases below 1
    int below = 0, differing = 0, failed = 0;

    explicit Summary(const std::vector<const Result*>& results) {
        for (const Result* r : results) {
            failed += !r->error.empty();
            differing += !r->disagreement.empty();
            if (!hasPeer(*r)) continue;
            ratios.push_back(ratio(*r));
            if (ratio(*r) >= 1) continue;
            ++below;
            slower += format("- %s %s: %.3f\n", r->operation.c_str(), r->sizeText().c_str(), ratio(*r));
        }
    }
};

// A picture's file, and its drawing.
struct Picture {
    std::string file, alternative, svg;
};

// How ratios lie, and how times grow: with the image for operations measured at all the sizes of kGrowth, and
// with the number at the end of a variant's name, such as k15 or rectangle15, where there are several.
std::vector<Picture> draw(const std::map<std::string, std::vector<const Result*>>& families) {
    std::vector<Dots> ratios;
    std::map<std::string, std::map<double, double>> bySize, byNumber;
    // The types used most are enough to see it.
    static const std::regex variant("(.*_(?:8u|32f)_C1R/(?:k|rectangle|disc))([0-9]+)(-float)?");
    for (const auto& [family, results] : families) {
        Dots row{family, Summary(results).ratios};
        if (!row.values.empty()) ratios.push_back(std::move(row));
        for (const Result* r : results) {
            if (!r->error.empty() || r->ours.median <= 0) continue;
            if (r->operation.ends_with(kGrowthVariant)) {
                const std::string name(r->operation, 0, r->operation.size() - std::strlen(kGrowthVariant));
                bySize[name][r->size.width] = nsPerPixel(*r, r->ours);
            }
            std::smatch match;
            if (r->size.width == 640 && std::regex_match(r->operation, match, variant))
                byNumber[match[1].str() + "N" + match[3].str()][std::stod(match[2])] =
                    nsPerPixel(*r, r->ours);
        }
    }
    const auto lines = [](const std::map<std::string, std::map<double, double>>& series, size_t least) {
        std::vector<Line> result;
        for (const auto& [name, points] : series) {
            if (points.size() >= least) result.push_back({name, {points.begin(), points.end()}});
        }
        return result;
    };
    std::vector<Picture> pictures;
    if (!ratios.empty()) {
        pictures.push_back({"ratios.svg", "Ratios by family",
                            dotChart("The peer's time over ours; right of 1 we are faster", ratios)});
    }
    if (const auto growth = lines(bySize, 2); !growth.empty()) {
        pictures.push_back({"growth.svg", "Time by image size",
                            lineChart("Time of a pixel by the size of the image",
                                      "width and height in pixels", "ns/px", growth)});
    }
    if (const auto numbers = lines(byNumber, 4); !numbers.empty()) {
        pictures.push_back(
            {"kernels.svg", "Time by kernel or mask size",
             lineChart("Time of a pixel by the length of the kernel or the size of the mask (640x480)", "N",
                       "ns/px", numbers)});
    }
    return pictures;
}

void writeMarkdown(std::ostream& out, const Description& machine,
                   const std::map<std::string, std::vector<const Result*>>& families,
                   const std::vector<Picture>& pictures) {
    out << "# Performance\n\n";
    for (const auto& [what, value] : machine) out << "- " << what << ": " << value << "\n";
    out << "\n"
        << kPreface << "## Summary\n\n"
        << "| family | cases | compared | smallest ratio | median ratio | below 1 | differing | failed |\n"
        << "|---|--:|--:|--:|--:|--:|--:|--:|\n";
    for (const auto& [family, results] : families) {
        const Summary s(results);
        const size_t n = s.ratios.size();
        out << format("| %s | %zu | %zu | ", family.c_str(), results.size(), n)
            << (n > 0 ? format("%.2f | %.2f", *std::min_element(s.ratios.begin(), s.ratios.end()),
                               median(s.ratios))
                      : " | ")
            << format(" | %d | %d | %d |\n", s.below, s.differing, s.failed);
    }
    out << "\n";
    for (const Picture& picture : pictures)
        out << "![" << picture.alternative << "](" << picture.file << ")\n\n";
    std::string slower;
    for (const auto& [family, results] : families) slower += Summary(results).slower;
    out << "## Slower than the peer\n\n" << (slower.empty() ? "Nothing.\n" : slower);
    for (const auto& [family, results] : families) {
        out << "\n## " << family << "\n";
        writeTable(out, results, false);
        writeTable(out, results, true);
    }
}

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    return result + '"';
}

std::string timingJson(const Timing& t) {
    if (t.median <= 0) return "null";
    return format("{\"median_ns\": %.6g, \"min_ns\": %.6g}", t.median * 1e9, t.fastest * 1e9);
}

void writeJson(std::ostream& out, const Description& machine, const std::vector<Result>& results) {
    out << "{\n  \"machine\": {";
    const char* separator = "\n";
    for (const auto& [what, value] : machine) {
        out << separator << "    " << quoted(what) << ": " << quoted(value);
        separator = ",\n";
    }
    out << "\n  },\n  \"cases\": [";
    separator = "\n";
    for (const Result& r : results) {
        out << separator << "    {\"family\": " << quoted(r.family)
            << ", \"operation\": " << quoted(r.operation)
            << format(
                   ", \"width\": %d, \"height\": %d, \"pixels\": %.0f, \"bytes_moved\": %.0f, \"rounds\": %d",
                   r.size.width, r.size.height, r.pixels, r.bytesMoved, r.rounds)
            << (r.bound > 0 ? format(", \"bound_ns\": %.6g", r.bound * 1e9) : "")
            << ", \"ours\": " << timingJson(r.ours) << ", \"peer\": " << timingJson(r.peer)
            << ", \"memcpy\": " << timingJson(r.copy) << ", \"peer_name\": " << quoted(r.peerName)
            << ", \"results_compared\": " << (r.compared ? "true" : "false")
            << ", \"disagreement\": " << quoted(r.disagreement) << ", \"error\": " << quoted(r.error) << "}";
        separator = ",\n";
    }
    out << "\n  ]\n}\n";
}

}  // namespace

std::string consoleLine(const Result& r) {
    std::string line = format("%-58s", (r.family + "/" + r.operation + "/" + r.sizeText()).c_str());
    if (!r.error.empty()) return line + " FAILED: " + r.error;
    if (r.pixels < kSmall) {
        line += format(" %8.3g ns/call", r.ours.median * 1e9);
    } else {
        line += format(" %8.3g ns/px", nsPerPixel(r, r.ours));
    }
    if (hasPeer(r)) line += format("  %.2fx %s", ratio(r), r.peerName.c_str());
    if (r.copy.median > 0) line += format("  %.0f%% of memcpy", percentOfCopy(r));
    if (!r.disagreement.empty()) line += "  DIFFERS: " + r.disagreement;
    return line;
}

bool writeReport(const std::vector<Result>& results, const std::string& directory) {
    const Description machine = describeMachine();
    std::map<std::string, std::vector<const Result*>> families;
    for (const Result& r : results) families[r.family].push_back(&r);

    std::error_code ignored;  // opening the files tells
    std::filesystem::create_directories(directory, ignored);
    std::ofstream markdown(directory + "/bench.md"), json(directory + "/bench.json");
    const std::vector<Picture> pictures = draw(families);
    writeMarkdown(markdown, machine, families, pictures);
    writeJson(json, machine, results);
    bool written = true;
    for (const Picture& picture : pictures) {
        std::ofstream file(directory + "/" + picture.file);
        file << picture.svg;
        file.close();
        written = written && !file.fail();
    }
    markdown.close();
    json.close();
    return written && !markdown.fail() && !json.fail();
}

}  // namespace bench
