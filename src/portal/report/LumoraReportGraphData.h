// LumoraReportGraphData.h: what a report's graph shows: values by label and series.
#pragma once

#include <string>
#include <vector>

struct LumoraSQLColumnDescription;

// One value as the chart writes it; `text` is empty where there is none.
struct ReportGraphValue {
    std::string text;
    double number = 0;
    std::string link;  // a URL, or empty
};

struct ReportGraphSeries {
    std::string name;
    std::vector<ReportGraphValue> values;  // one a label

    double Sum() const;
};

struct ReportGraphData {
    std::vector<std::string> labels;
    std::vector<ReportGraphSeries> series;

    bool HasNegative() const;
    // Is there any value but zero?
    bool HasShape() const;
    // The sum of the values of one label.
    double Height(size_t label) const;
    // Puts the labels into their order where all are numbers or all are dates (yyyy-mm...).
    void SortLabels();
    // Keeps the labels with the largest heights, the largest first.
    void KeepLargestLabels(size_t count);
    // Keeps the series with the largest sums, in their order.
    void KeepLargestSeries(size_t count);
    // Drops the series that is the sum of all others at every label: stacked upon its own parts it
    // would count everything twice.
    void DropWhole();

  private:
    void Reorder(const std::vector<size_t>& order);
};
