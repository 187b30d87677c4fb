// OpenFlashGraphDataSeries.h: one series of a chart: what is drawn in one colour.
#pragma once

#include <vector>

#include "common/UStringX.h"

class OpenFlashGraphDataSeries {
  public:
    enum ValueType { kText, kNumber };

    // `colour` is "#" and six hexadecimal digits; `type` "line", "pie", "bar_stack", "bar_glass" or
    // another word that begins with "bar_".
    OpenFlashGraphDataSeries(const char* name, const char* colour, const char* type);

    // Adds a point. The text of a number that is none, and an empty one, stands for a point without
    // a value.
    void AddValue(const char* value, bool isNumber) { AddValue(value, "", isNumber); }
    void AddValue(const char* value, const char* label, bool isNumber);
    void AddValue(const char* value, const char* label) = delete;  // the label is no flag
    // Where a click on the point leads: a URL. An index that no point has is ignored.
    void SetLink(int index, UString url);

    // The points are counted from 0; beyond them values, labels and links read as "".
    int GetCount() const { return static_cast<int>(points_.size()); }
    const char* GetData(int index) const;
    const char* GetLink(int index) const;
    const char* GetLabel(int index) const;
    ValueType GetValueType(int index) const;
    // The point's value as a number; 0 for a text and for a point without a value.
    double GetNumber(int index) const;

    const char* GetName() const { return name_.c_str(); }
    void SetName(const char* name) { name_ = name; }
    const char* GetColour() const { return colour_.c_str(); }
    const char* GetType() const { return type_.c_str(); }

  private:
    struct Point {
        UString value;
        UString label;
        UString link;
        ValueType type;
    };
    const Point* At(int index) const;

    UString name_;
    UString colour_;
    UString type_;
    std::vector<Point> points_;
};
