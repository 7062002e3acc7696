// Draws the report's pictures.
#include "support/chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

namespace bench {
namespace {

const char* const kColours[] = {"#1b6ca8", "#c8553d", "#3a7d44", "#8e5ea2", "#c69214",
                                "#4d9078", "#a23b72", "#555555", "#7a9e00", "#e07a5f"};

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '&':
                result += "&amp;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

class Drawing {
  public:
    Drawing(double width, double height, const std::string& title) {
        out_ << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << width << ' ' << height
             << "\" width=\"" << width << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
             << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
        text(10, 20, "start", title, "font-weight=\"bold\"");
    }
    void text(double x, double y, const char* anchor, const std::string& words,
              const std::string& more = "") {
        out_ << "<text x=\"" << x << "\" y=\"" << y << "\" text-anchor=\"" << anchor << "\" " << more << ">"
             << escaped(words) << "</text>\n";
    }
    void line(double x1, double y1, double x2, double y2, const char* colour) {
        out_ << "<line x1=\"" << x1 << "\" y1=\"" << y1 << "\" x2=\"" << x2 << "\" y2=\"" << y2
             << "\" stroke=\"" << colour << "\"/>\n";
    }
    void dot(double x, double y, double radius, const char* colour, double opacity) {
        out_ << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"" << radius << "\" fill=\"" << colour
             << "\" fill-opacity=\"" << opacity << "\"/>\n";
    }
    void path(const std::vector<std::pair<double, double>>& points, const char* colour) {
        out_ << "<polyline fill=\"none\" stroke-width=\"2\" stroke=\"" << colour << "\" points=\"";
        for (const auto& [x, y] : points) out_ << x << ',' << y << ' ';
        out_ << "\"/>\n";
    }
    std::string done() {
        out_ << "</svg>\n";
        return out_.str();
    }

  private:
    std::ostringstream out_;
};

// Maps values to places by their logarithms; the ends are powers of the base.
class Axis {
  public:
    Axis(double low, double high, double base, double from, double to)
        : base_(base),
          first_(std::floor(log(low) + 1e-9)),
          last_(std::ceil(log(high) - 1e-9)),
          from_(from),
          to_(to) {
        if (last_ <= first_) last_ = first_ + 1;
    }
    double place(double value) const {
        return from_ + (log(value) - first_) / (last_ - first_) * (to_ - from_);
    }
    std::vector<double> marks() const {
        std::vector<double> values;
        for (double e = first_; e <= last_; ++e) values.push_back(std::pow(base_, e));
        return values;
    }

  private:
    double log(double value) const { return std::log(value) / std::log(base_); }

    double base_, first_, last_, from_, to_;
};

std::string number(double value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

}  // namespace

std::string dotChart(const std::string& title, const std::vector<Dots>& rows) {
    double low = 0.5, high = 2;
    for (const Dots& row : rows) {
        for (const double value : row.values) low = std::min(low, value), high = std::max(high, value);
    }
    constexpr double left = 110, right = 740, top = 40, rowHeight = 26;
    const double bottom = top + rowHeight * static_cast<double>(rows.size());
    const Axis axis(low, high, 2, left, right);
    Drawing drawing(760, bottom + 30, title);
    for (const double mark : axis.marks()) {
        const double x = axis.place(mark);
        drawing.line(x, top, x, bottom, mark == 1 ? "#333333" : "#dddddd");
        drawing.text(x, bottom + 16, "middle", number(mark));
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        const double y = top + rowHeight * (static_cast<double>(i) + 0.5);
        drawing.text(left - 10, y + 4, "end", rows[i].name);
        for (const double value : rows[i].values)
            drawing.dot(axis.place(value), y, 4, value < 1 ? kColours[1] : kColours[0], 0.35);
    }
    return drawing.done();
}

std::string lineChart(const std::string& title, const std::string& across, const std::string& up,
                      const std::vector<Line>& lines) {
    double lowX = INFINITY, highX = 0, lowY = INFINITY, highY = 0;
    for (const Line& line : lines) {
        for (const auto& [x, y] : line.points) {
            lowX = std::min(lowX, x), highX = std::max(highX, x);
            lowY = std::min(lowY, y), highY = std::max(highY, y);
        }
    }
    constexpr double left = 60, right = 520, top = 40;
    const double bottom = std::max(360.0, top + 18.0 * static_cast<double>(lines.size()));
    const Axis xs(lowX, highX, 2, left, right), ys(lowY, highY, 10, bottom, top);
    Drawing drawing(860, bottom + 45, title);
    for (const double mark : xs.marks()) {
        drawing.line(xs.place(mark), top, xs.place(mark), bottom, "#dddddd");
        drawing.text(xs.place(mark), bottom + 16, "middle", number(mark));
    }
    for (const double mark : ys.marks()) {
        drawing.line(left, ys.place(mark), right, ys.place(mark), "#dddddd");
        drawing.text(left - 6, ys.place(mark) + 4, "end", number(mark));
    }
    drawing.text((left + right) / 2, bottom + 36, "middle", across);
    drawing.text(left, top - 6, "middle", up);
    for (size_t i = 0; i < lines.size(); ++i) {
        const char* const colour = kColours[i % std::size(kColours)];
        std::vector<std::pair<double, double>> path;
        for (const auto& [x, y] : lines[i].points) path.emplace_back(xs.place(x), ys.place(y));
        drawing.path(path, colour);
        for (const auto& [x, y] : path) drawing.dot(x, y, 3, colour, 1);
        const double y = top + 18 * (static_cast<double>(i) + 0.5);
        drawing.line(right + 12, y - 4, right + 30, y - 4, colour);
        drawing.dot(right + 21, y - 4, 3, colour, 1);
        drawing.text(right + 36, y, "start", lines[i].name);
    }
    return drawing.done();
}

}  // namespace bench
