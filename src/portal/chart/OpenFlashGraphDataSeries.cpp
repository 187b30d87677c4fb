#include "portal/chart/OpenFlashGraphDataSeries.h"

#include <cmath>
#include <cstdlib>
#include <utility>

OpenFlashGraphDataSeries::OpenFlashGraphDataSeries(const char* name, const char* colour,
                                                   const char* type)
    : name_(name), colour_(colour), type_(type) {}

void OpenFlashGraphDataSeries::AddValue(const char* value, const char* label, bool isNumber) {
    points_.push_back({value, label, {}, isNumber ? kNumber : kText});
}

void OpenFlashGraphDataSeries::SetLink(int index, UString url) {
    if (At(index) != nullptr) points_[static_cast<size_t>(index)].link = std::move(url);
}

const OpenFlashGraphDataSeries::Point* OpenFlashGraphDataSeries::At(int index) const {
    return index >= 0 && index < GetCount() ? &points_[static_cast<size_t>(index)] : nullptr;
}

const char* OpenFlashGraphDataSeries::GetData(int index) const {
    const Point* point = At(index);
    return point != nullptr ? point->value.c_str() : "";
}

const char* OpenFlashGraphDataSeries::GetLink(int index) const {
    const Point* point = At(index);
    return point != nullptr ? point->link.c_str() : "";
}

const char* OpenFlashGraphDataSeries::GetLabel(int index) const {
    const Point* point = At(index);
    return point != nullptr ? point->label.c_str() : "";
}

OpenFlashGraphDataSeries::ValueType OpenFlashGraphDataSeries::GetValueType(int index) const {
    const Point* point = At(index);
    return point != nullptr ? point->type : kText;
}

double OpenFlashGraphDataSeries::GetNumber(int index) const {
    if (GetValueType(index) != kNumber) return 0;
    const double number = strtod(GetData(index), nullptr);
    return std::isfinite(number) ? number : 0;
}
