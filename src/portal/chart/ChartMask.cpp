#include "portal/chart/ChartMask.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

ChartMask::ChartMask(int left, int bottom, int width, int height)
    : left_(left),
      bottom_(bottom),
      width_(std::max(width, 0)),
      height_(std::max(height, 0)),
      covered_(static_cast<size_t>(width_) * static_cast<size_t>(height_)) {}

double ChartMask::At(int x, int y) const {
    return covered_[static_cast<size_t>(y - bottom_) * static_cast<size_t>(width_) +
                    static_cast<size_t>(x - left_)];
}

// A pixel counts by the distance of its middle: full half a pixel inside the outline, empty half a
// pixel outside.
void ChartMask::AddStroke(double fromX, double fromY, double toX, double toY, double radius) {
    const double dx = toX - fromX, dy = toY - fromY, square = dx * dx + dy * dy;
    const auto first = [&](double a, double b, int low) {
        return std::max(static_cast<int>(std::floor(std::min(a, b) - radius)), low);
    };
    const auto last = [&](double a, double b, int high) {
        return std::min(static_cast<int>(std::ceil(std::max(a, b) + radius)) + 1, high);
    };
    const int lastX = last(fromX, toX, right()), lastY = last(fromY, toY, top());
    for (int y = first(fromY, toY, bottom_); y <= lastY; ++y)
        for (int x = first(fromX, toX, left_); x <= lastX; ++x) {
            const double px = x - 0.5 - fromX, py = y - 0.5 - fromY;
            const double along =
                square > 0 ? std::clamp((px * dx + py * dy) / square, 0.0, 1.0) : 0;
            const double away = std::hypot(px - along * dx, py - along * dy);
            const float part = static_cast<float>(std::clamp(radius + 0.5 - away, 0.0, 1.0));
            float& covered =
                covered_[static_cast<size_t>(y - bottom_) * static_cast<size_t>(width_) +
                         static_cast<size_t>(x - left_)];
            covered = std::max(covered, part);
        }
}
