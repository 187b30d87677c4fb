// ChartScale.h: the value axis of a chart: where it ends, its steps, and how its figures are
// written.
#pragma once

#include "common/UStringX.h"

struct ChartScale {
    double top = 1;   // the value at the upper end, a multiple of the step
    double step = 1;  // between two labels, in units of the values
    int labels = 2;   // from 0 to the top, both counted: 2 or more

    // The height of a value in an axis of `pixels`, not beyond its upper end.
    int Pixels(double value, int pixels) const;
};

// The scale of an axis for values up to `largest`. `max` and `step` are what the description says,
// or NAN where it says nothing: then round steps of 1, 2 or 5 are chosen. A top that is no multiple
// of the step is raised to the next; steps of which there would be more than `mostLabels` are taken
// together. Throws "zero ystep", or a text for a scale that cannot be drawn.
ChartScale MakeChartScale(double largest, double max, double step, int mostLabels);

// A value as readers know figures: thousands parted by commas, and as many decimals as `step` has
// (three at most). With `isTime` the value is seconds, written hh:mm:ss.
UString ChartNumber(double value, double step, bool isTime);
