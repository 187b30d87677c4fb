#include "portal/chart/ChartScale.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <string_view>

#include "common/ThrowText.h"

namespace {

constexpr int kRoundLabels = 5;  // about as many as an axis without steps of its own gets
constexpr int kMaxDecimals = 3;
constexpr double kRoundingSlack = 1e-9;

// The next of 1, 2 and 5 times a power of ten.
double RoundStep(double rough) {
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double digit : {1.0, 2.0, 5.0})
        if (digit * power >= rough * (1 - kRoundingSlack)) return digit * power;
    return 10 * power;
}

int Decimals(double step) {
    int decimals = 0;
    while (decimals < kMaxDecimals && std::abs(step - std::round(step)) > 1e-6 * step) {
        step *= 10;
        ++decimals;
    }
    return decimals;
}

}  // namespace

int ChartScale::Pixels(double value, int pixels) const {
    return static_cast<int>(std::lround(std::clamp(value / top, 0.0, 1.0) * pixels));
}

ChartScale MakeChartScale(double largest, double max, double step, int mostLabels) {
    if (step == 0) ThrowText("zero ystep");
    if (std::isnan(max)) max = largest;
    if (!std::isfinite(max) || max < 0 || max > INT_MAX || std::isinf(step) || step < 0)
        ThrowText("value axis out of range");
    ChartScale scale;
    scale.step = !std::isnan(step) ? step : max > 0 ? RoundStep(max / kRoundLabels) : 1;
    const double steps = std::max(std::ceil(max / scale.step - kRoundingSlack), 1.0);
    // As many steps as there is no room for are taken together.
    const double together = std::ceil(steps / (std::max(mostLabels, 2) - 1));
    scale.step *= together;
    scale.labels = static_cast<int>(std::ceil(steps / together)) + 1;
    scale.top = scale.step * (scale.labels - 1);
    if (!std::isfinite(scale.top) || scale.top > INT_MAX) ThrowText("value axis out of range");
    return scale;
}

UString ChartNumber(double value, double step, bool isTime) {
    UString text;
    if (isTime) {
        const long seconds = std::lround(value);
        text.Format("%02ld:%02ld:%02ld", seconds / 3600, seconds / 60 % 60, seconds % 60);
        return text;
    }
    text.Format("%.*f", Decimals(step), value);
    const std::string_view digits = text.c_str();
    const size_t whole = std::min(digits.find('.'), digits.size());
    std::string parted;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && i < whole && (whole - i) % 3 == 0) parted += ',';
        parted += digits[i];
    }
    return parted.c_str();
}
