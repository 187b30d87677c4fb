// ChartPie.h: how a pie is cut, and where its slices lie in the picture.
#pragma once

#include <vector>

#include "portal/chart/ChartValues.h"

// Angles are radians, clockwise from three o'clock; coordinates grow to the right and upwards.
struct ChartPie {
    struct Slice {
        const ChartValue* value;  // of the list that was cut
        double begin, end;        // angles
        double share;             // of the whole, above 0 and up to 1
        double Middle() const { return (begin + end) / 2; }
    };

    // Cuts the values that are more than nothing, the first one from `start` on; `values` must live
    // as long as the pie.
    ChartPie(const ChartValueList& values, double start);

    // The slice at a place, anywhere in its direction from the middle; there must be one.
    const Slice& At(double px, double py) const;
    // The place at that angle and distance from the middle.
    double X(double angle, double distance) const;
    double Y(double angle, double distance) const;

    std::vector<Slice> slices;
    double x = 0, y = 0, radius = 0;  // of the disc
};
