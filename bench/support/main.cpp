// The command line of okpcv_bench.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "support/compare.h"
#include "support/report.h"

namespace {

const char kUsage[] =
    "usage: okpcv_bench [--budget=SECONDS] [--out=DIR] [--smoke] [--benchmark_...]\n"
    "  --budget=SECONDS          time for all selected cases together (default 840)\n"
    "  --out=DIR                 where bench.md and bench.json go (default build/bench)\n"
    "  --smoke                   call every case once; no figures, no files\n"
    "  --benchmark_filter=REGEX  run only the cases that match\n"
    "  --benchmark_list_tests    list the cases, run none\n";

}  // namespace

int main(int argc, char** argv) {
    // A case is one iteration to Google Benchmark: the rounds and batches inside it are the harness's.
    std::vector<char*> arguments(argv, argv + argc);
    char once[] = "--benchmark_min_time=0";
    arguments.push_back(once);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());

    bench::Options options;
    std::string directory = "build/bench";
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[static_cast<size_t>(i)];
        if (argument == "--smoke") {
            options.smoke = true;
        } else if (argument.starts_with("--out=")) {
            directory = argument.substr(std::strlen("--out="));
        } else if (argument.starts_with("--budget=")) {
            options.budget = std::atof(argument.c_str() + std::strlen("--budget="));
        } else {
            std::cerr << kUsage;
            return 2;
        }
    }

#ifdef OKPCV_BENCH_OPENCV
    cv::setNumThreads(1);
#endif
    const auto start = std::chrono::steady_clock::now();
    const std::vector<bench::Result> results = bench::runCases(options);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    int failed = 0;
    for (const bench::Result& result : results) failed += !result.error.empty();
    if (failed > 0) std::cerr << failed << " cases FAILED\n";
    if (!results.empty() && !options.smoke) {
        if (!bench::writeReport(results, directory)) {
            std::cerr << "cannot write to " << directory << "\n";
            return 1;
        }
        std::cout << results.size() << " cases in " << std::lround(seconds.count()) << " s; report in "
                  << directory << "/bench.md\n";
    }
    return failed > 0;
}
