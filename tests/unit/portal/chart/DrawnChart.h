// DrawnChart.h: a chart drawn for a test, in a folder of its own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "portal/chart/PngChart.h"
#include "unit/cgiFramework/TestRequest.h"

class DrawnChart {
  public:
    // Draws the description, whose single quotes stand for double ones; what it throws is in
    // `problem`.
    explicit DrawnChart(std::string text, int width = 600, int height = 300,
                        const char* server = "") {
        if (text.find('"') == std::string::npos) std::replace(text.begin(), text.end(), '\'', '"');
        text_.assign(text.begin(), text.end());
        text_.push_back('\0');
        text_.shrink_to_fit();
        try {
            json_ = std::make_unique<JsonObj>(text_.data(), nullptr, 0);
            chart = std::make_unique<PngChart>(json_.get(), width, height, Path().c_str(), server);
        } catch (const char* thrown) {
            problem = thrown;
        }
    }

    std::string Path() const { return (request_.root / "12_ab.png").string(); }
    bool HasFile() const { return std::filesystem::exists(Path()); }
    std::string Map() const {
        UString name, map;
        chart->GetMap(name, map);
        return map.c_str();
    }

    std::unique_ptr<PngChart> chart;
    std::string problem;

  private:
    TestRequest request_;
    std::vector<char> text_;
    std::unique_ptr<JsonObj> json_;
};
