// The gallery's page: HTML with its style sheet and its images inside.
#include "page.h"

#include "png_io.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace {

constexpr const char* kStyle = R"css(
:root {
    color-scheme: light dark;
    --ground: #f6f6f4; --card: #ffffff; --text: #1e2326; --quiet: #667076; --line: #e2e3e0; --accent: #0f6b75;
}
@media (prefers-color-scheme: dark) {
    :root {
        --ground: #15181a; --card: #1e2224; --text: #e4e7e8; --quiet: #96a0a5; --line: #2e3437; --accent: #6cc5cf;
    }
}
* { box-sizing: border-box; }
body {
    margin: 0 auto; max-width: 78rem; padding: 3rem 1.5rem 4rem;
    background: var(--ground); color: var(--text);
    font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "DejaVu Sans", sans-serif;
}
h1 { margin: 0 0 .5rem; font-size: 2rem; font-weight: 650; letter-spacing: -.02em; }
header img { float: right; width: 9rem; margin: 0 0 1.5rem 1.5rem; border-radius: .6rem; }
header p { margin: .15rem 0; color: var(--quiet); }
header p:last-of-type { margin-bottom: 1.5rem; }
nav {
    clear: both; display: flex; flex-wrap: wrap; gap: .4rem 1.4rem; padding: .8rem 0;
    border: solid var(--line); border-width: 1px 0;
}
a { color: var(--accent); text-decoration: none; }
a:hover { text-decoration: underline; }
section { margin-top: 2.75rem; }
h2 { margin: 0; font-size: 1.3rem; font-weight: 620; letter-spacing: -.01em; }
section > p { margin: .3rem 0 1.2rem; max-width: 46rem; color: var(--quiet); }
.panels { display: grid; grid-template-columns: repeat(auto-fill, minmax(17rem, 1fr)); gap: 1.25rem; }
figure {
    display: flex; flex-direction: column; margin: 0; overflow: hidden;
    background: var(--card); border: 1px solid var(--line); border-radius: .6rem;
}
img { display: block; width: 100%; height: auto; background: #000; }
img.small { image-rendering: pixelated; }
figcaption { display: flex; flex: 1; flex-direction: column; padding: .8rem 1rem .9rem; font-size: .92rem; }
.call { margin-top: .7rem; padding-top: .5rem; border-top: 1px solid var(--line); font-size: .82rem; }
.call:nth-of-type(1) { margin-top: auto; }
.call p { display: flex; justify-content: space-between; gap: 1rem; margin: 0; color: var(--quiet); }
.call p :last-child { white-space: nowrap; font-variant-numeric: tabular-nums; }
figcaption > p { margin: 0 0 .7rem; }
figcaption > p:only-child { margin: 0; }
table { grid-column: 1 / -1; border-collapse: collapse; font-size: .92rem; font-variant-numeric: tabular-nums; }
th, td { padding: .45rem 1rem; border-bottom: 1px solid var(--line); text-align: right; }
th { color: var(--quiet); font-weight: 500; }
th:first-child, td:first-child { padding-left: 0; text-align: left; }
code { font: .9em ui-monospace, "SFMono-Regular", Menlo, "DejaVu Sans Mono", monospace; overflow-wrap: anywhere; }
)css";

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::string base64(const std::vector<uint8_t>& bytes) {
    static constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string result;
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0u);
        for (size_t k = 0; k < 4; ++k) result += k <= count ? digits[group >> (18 - 6 * k) & 63] : '=';
    }
    return result;
}

std::string duration(double microseconds) {
    char text[32];
    const bool milli = microseconds >= 1000;
    const double value = milli ? microseconds / 1000 : microseconds;
    std::snprintf(text, sizeof text,
                  value < 10    ? "%.2f %s"
                  : value < 100 ? "%.1f %s"
                                : "%.0f %s",
                  value, milli ? "ms" : "µs");
    return text;
}

std::string imageElement(const Image8& image, const std::vector<uint8_t>& png, const std::string& caption) {
    // A small image is drawn larger than it is; its pixels should then stay sharp.
    return std::string("<img") + (image.width() < 300 ? " class=\"small\"" : "") + " width=\"" +
           std::to_string(image.width()) + "\" height=\"" + std::to_string(image.height()) + "\" alt=\"" +
           escaped(caption) + "\" src=\"data:image/png;base64," + base64(png) + "\">\n";
}

void writeFile(const std::filesystem::path& path, const char* data, size_t size) {
    std::ofstream file(path, std::ios::binary);
    file.write(data, static_cast<std::streamsize>(size));
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace

void Page::section(const std::string& heading, const std::string& sentence) {
    std::string anchor;
    for (const char c : heading) anchor += c == ' ' ? '-' : c;
    links_ += "<a href=\"#" + escaped(anchor) + "\">" + escaped(heading) + "</a>\n";
    if (!sections_.empty()) sections_ += "</div>\n</section>\n";
    sections_ += "<section id=\"" + escaped(anchor) + "\">\n<h2>" + escaped(heading) + "</h2>\n<p>" +
                 escaped(sentence) + "</p>\n<div class=\"panels\">\n";
}

void Page::panel(const Panel& panel) {
    const std::vector<uint8_t> png = encodePng(panel.image);
    writeFile(folder_ / (panel.name + ".png"), reinterpret_cast<const char*>(png.data()), png.size());

    sections_ += "<figure>\n" + imageElement(panel.image, png, panel.caption) + "<figcaption>\n<p>" +
                 escaped(panel.caption) + "</p>\n";
    for (const Call& call : panel.calls) {
        sections_ += "<div class=\"call\"><code>" + escaped(call.function) + "</code><p><span>" +
                     escaped(call.parameters) + "</span><span>" + duration(call.microseconds) +
                     "</span></p></div>\n";
    }
    sections_ += "</figcaption>\n</figure>\n";
}

void Page::table(const std::vector<std::string>& head, const std::vector<std::vector<std::string>>& rows) {
    const auto row = [](const std::vector<std::string>& cells, const std::string& element) {
        std::string html = "<tr>";
        for (const std::string& cell : cells) {
            html += "<" + element + ">" + escaped(cell) + "</" + element + ">";
        }
        return html + "</tr>\n";
    };
    sections_ += "<table>\n" + row(head, "th");
    for (const std::vector<std::string>& cells : rows) sections_ += row(cells, "td");
    sections_ += "</table>\n";
}

std::filesystem::path Page::write(const std::string& title, const std::vector<std::string>& introduction,
                                  const Image8& photo) const {
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
        escaped(title) + "</title>\n<style>" + kStyle + "</style>\n</head>\n<body>\n<header>\n" +
        imageElement(photo, encodePng(photo), "The photograph") + "<h1>" + escaped(title) + "</h1>\n";
    for (const std::string& line : introduction) html += "<p>" + escaped(line) + "</p>\n";
    html += "<nav>\n" + links_ + "</nav>\n</header>\n" + sections_;
    if (!sections_.empty()) html += "</div>\n</section>\n";
    html += "</body>\n</html>\n";

    const std::filesystem::path path = folder_ / "index.html";
    writeFile(path, html.data(), html.size());
    return path;
}
