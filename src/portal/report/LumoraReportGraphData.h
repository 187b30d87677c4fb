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
    // Do labels come again and again, as in a list whose rows are no groups? The few of customers
    // that have a name in common do not count.
    bool RepeatsLabels() const;
    // The sum of the values of one label.
    double Height(size_t label) const;
    // Are all labels dates (yyyy-mm...), or all times of day (hh:mm...)?
    bool HasOrderedLabels() const;
    // Puts the labels into their order where they have one or are all numbers.
    void SortLabels();
    // The same with the series' names.
    void SortSeries();
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
