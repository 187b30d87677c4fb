#include "portal/report/LumoraReportGraphData.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <set>
#include <utility>

namespace {

bool IsDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

bool IsDate(std::string_view text) {
    return text.size() >= 7 && IsDigits(text.substr(0, 4)) && text[4] == '-' &&
           IsDigits(text.substr(5, 2));
}

bool IsTimeOfDay(std::string_view text) {
    return text.size() >= 5 && IsDigits(text.substr(0, 2)) && text[2] == ':' &&
           IsDigits(text.substr(3, 2));
}

template <class Test>
bool All(const std::vector<std::string>& texts, Test test) {
    return std::all_of(texts.begin(), texts.end(), test);
}

// 0 to count - 1.
std::vector<size_t> Indices(size_t count) {
    std::vector<size_t> indices(count);
    std::iota(indices.begin(), indices.end(), size_t{0});
    return indices;
}

// Are these all dates, or all times of day?
bool HaveOrder(const std::vector<std::string>& texts) {
    return All(texts, IsDate) || All(texts, IsTimeOfDay);
}

// The indices of the texts in their own order; as they stand when they have none.
std::vector<size_t> OrderOf(const std::vector<std::string>& texts) {
    std::vector<size_t> order = Indices(texts.size());
    if (All(texts, IsDigits))
        std::stable_sort(order.begin(), order.end(), [&texts](size_t a, size_t b) {
            return atoll(texts[a].c_str()) < atoll(texts[b].c_str());
        });
    else if (HaveOrder(texts))
        std::stable_sort(order.begin(), order.end(),
                         [&texts](size_t a, size_t b) { return texts[a] < texts[b]; });
    return order;
}

}  // namespace

double ReportGraphSeries::Sum() const {
    double sum = 0;
    for (const ReportGraphValue& value : values)
        sum += value.number;
    return sum;
}

bool ReportGraphData::HasNegative() const {
    for (const ReportGraphSeries& each : series)
        for (const ReportGraphValue& value : each.values)
            if (value.number < 0) return true;
    return false;
}

bool ReportGraphData::HasShape() const {
    for (const ReportGraphSeries& each : series)
        for (const ReportGraphValue& value : each.values)
            if (value.number != 0) return true;
    return false;
}

bool ReportGraphData::RepeatsLabels() const {
    const std::set<std::string> distinct(labels.begin(), labels.end());
    return distinct.size() * 10 < labels.size() * 9;
}

double ReportGraphData::Height(size_t label) const {
    double height = 0;
    for (const ReportGraphSeries& each : series)
        height += each.values[label].number;
    return height;
}

void ReportGraphData::Reorder(const std::vector<size_t>& order) {
    const auto apply = [&order](auto& from) {
        std::remove_reference_t<decltype(from)> to;
        for (const size_t index : order)
            to.push_back(std::move(from[index]));
        from = std::move(to);
    };
    apply(labels);
    for (ReportGraphSeries& each : series)
        apply(each.values);
}

bool ReportGraphData::HasOrderedLabels() const {
    return HaveOrder(labels);
}

void ReportGraphData::SortLabels() {
    Reorder(OrderOf(labels));
}

void ReportGraphData::SortSeries() {
    std::vector<std::string> names;
    for (const ReportGraphSeries& each : series)
        names.push_back(each.name);
    std::vector<ReportGraphSeries> sorted;
    for (const size_t index : OrderOf(names))
        sorted.push_back(std::move(series[index]));
    series = std::move(sorted);
}

void ReportGraphData::KeepLargestLabels(size_t count) {
    std::vector<double> heights;
    for (size_t i = 0; i < labels.size(); ++i)
        heights.push_back(Height(i));
    std::vector<size_t> order = Indices(labels.size());
    std::stable_sort(order.begin(), order.end(),
                     [&heights](size_t a, size_t b) { return heights[a] > heights[b]; });
    order.resize(std::min(order.size(), count));
    Reorder(order);
}

void ReportGraphData::KeepLargestSeries(size_t count) {
    if (series.size() <= count) return;
    std::vector<double> sums;
    for (const ReportGraphSeries& each : series)
        sums.push_back(each.Sum());
    std::vector<double> sorted = sums;
    std::sort(sorted.begin(), sorted.end(), std::greater<>());
    const double least = sorted[count - 1];
    std::vector<ReportGraphSeries> kept;
    for (size_t i = 0; i < series.size() && kept.size() < count; ++i)
        if (sums[i] >= least) kept.push_back(std::move(series[i]));
    series = std::move(kept);
}

void ReportGraphData::DropWhole() {
    if (series.size() < 3) return;
    for (auto whole = series.begin(); whole != series.end(); ++whole) {
        bool isWhole = true;
        for (size_t i = 0; isWhole && i < labels.size(); ++i)
            isWhole = std::fabs(Height(i) - 2 * whole->values[i].number) < 1e-6;
        if (!isWhole) continue;
        series.erase(whole);
        return;
    }
}
