#include "portal/chart/ChartPie.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kTurn = 2 * 3.14159265358979323846;

}  // namespace

ChartPie::ChartPie(const ChartValueList& values, double start) {
    // Parts of the largest, so that no sum is beyond what a number holds.
    double largest = 0, total = 0;
    for (const ChartValue& value : values)
        largest = std::max(largest, value.number);
    for (const ChartValue& value : values)
        total += largest > 0 ? value.number / largest : 0;
    double done = 0;
    for (const ChartValue& value : values) {
        const double share = total > 0 ? value.number / largest / total : 0;
        if (share <= 0) continue;
        slices.push_back({&value, start + kTurn * done, start + kTurn * (done + share), share});
        done += share;
    }
}

const ChartPie::Slice& ChartPie::At(double px, double py) const {
    const double begin = slices.front().begin;
    double angle = std::fmod(std::atan2(y - py, px - x) - begin, kTurn);
    if (angle < 0) angle += kTurn;
    const auto found =
        std::upper_bound(slices.begin(), slices.end(), angle + begin,
                         [](double at, const Slice& slice) { return at < slice.end; });
    return found != slices.end() ? *found : slices.back();
}

double ChartPie::X(double angle, double distance) const {
    return x + distance * std::cos(angle);
}
double ChartPie::Y(double angle, double distance) const {
    return y - distance * std::sin(angle);
}
