// PieLabels.h: where the labels at one side of a pie stand, so that none covers another.
#pragma once

#include <cstddef>
#include <vector>

// `wanted` are heights in falling order, one a label. Answers heights in the same order that are at
// least `gap` apart and between `low` and `high`, each near the wanted one. There must be room for
// all: PieLabelRoom tells how many.
std::vector<double> SpreadPieLabels(const std::vector<double>& wanted, double gap, double low,
                                    double high);
size_t PieLabelRoom(double gap, double low, double high);
