// The gallery's page: sections of panels in one HTML file that needs nothing beside itself.
#pragma once

#include "image.h"

#include <filesystem>
#include <string>
#include <vector>

// One call of the library, as a panel shows it.
struct Call {
    std::string function;
    std::string parameters;
    double microseconds;
};

struct Panel {
    std::string name;  // of the panel's PNG file, without its extension
    std::string caption;
    Image8 image;
    std::vector<Call> calls = {};
};

class Page {
  public:
    // Panels are also written as PNG files into the folder.
    explicit Page(std::filesystem::path folder) : folder_(std::move(folder)) {}

    // Starts a section; the panels that follow are in it.
    void section(const std::string& heading, const std::string& sentence);
    void panel(const Panel& panel);
    // A table below the section's panels; the first column holds names, the others numbers.
    void table(const std::vector<std::string>& head, const std::vector<std::vector<std::string>>& rows);

    // Writes index.html, which shows the photograph at its head, and returns its path.
    std::filesystem::path write(const std::string& title, const std::vector<std::string>& introduction,
                                const Image8& photo) const;

  private:
    std::filesystem::path folder_;
    std::string links_, sections_;
};
