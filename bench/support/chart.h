// The report's pictures, as SVG.
#ifndef OKPCV_BENCH_CHART_H
#define OKPCV_BENCH_CHART_H

#include <string>
#include <utility>
#include <vector>

namespace bench {

// Values by a name: one row of dots, or one line.
struct Dots {
    std::string name;
    std::vector<double> values;
};
struct Line {
    std::string name;
    std::vector<std::pair<double, double>> points;
};

// A row for each name and a dot for each value, over a logarithmic axis with a line at 1.
std::string dotChart(const std::string& title, const std::vector<Dots>& rows);

// Lines over two logarithmic axes.
std::string lineChart(const std::string& title, const std::string& across, const std::string& up,
                      const std::vector<Line>& lines);

}  // namespace bench

#endif  // OKPCV_BENCH_CHART_H
