// ChartMask.h: smooth shapes with an outline of any direction: how much of each pixel they cover.
#pragma once

#include <vector>

// A rectangle of pixels in which shapes are collected; where they meet, a pixel counts once, so
// that what is painted through the mask has no seams. Coordinates are exact: pixel (x, y) reaches
// from x - 1 to x and from y - 1 to y.
class ChartMask {
  public:
    ChartMask(int left, int bottom, int width, int height);

    // A stroke with round ends; one of no length is a disc.
    void AddStroke(double fromX, double fromY, double toX, double toY, double radius);

    int left() const { return left_; }
    int bottom() const { return bottom_; }
    int right() const { return left_ + width_ - 1; }
    int top() const { return bottom_ + height_ - 1; }
    // From 0.0 to 1.0, for a pixel of the rectangle.
    double At(int x, int y) const;

  private:
    int left_, bottom_, width_, height_;
    std::vector<float> covered_;
};
