// What is made of the results: a line on the console, a Markdown report with pictures, and a JSON file.
#ifndef OKPCV_BENCH_REPORT_H
#define OKPCV_BENCH_REPORT_H

#include <string>
#include <vector>

#include "support/compare.h"

namespace bench {

std::string consoleLine(const Result& result);

// Writes bench.md, its pictures and bench.json to a directory, which is made if need be. False when that
// fails.
bool writeReport(const std::vector<Result>& results, const std::string& directory);

}  // namespace bench

#endif  // OKPCV_BENCH_REPORT_H
