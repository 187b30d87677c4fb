#include "portal/report/ReportSeries.h"

#include "common/ThrowText.h"
#include "portal/report/ReportColumns.h"

ReportSeries::ReportSeries(const UString& title, const std::vector<UString>& keys,
                           const std::vector<std::string_view>& names)
    : title_(title.c_str()) {
    while (!title_.empty() && (title_.back() == ' ' || title_.back() == ':'))
        title_.pop_back();
    for (const UString& key : keys) {
        if (key.IsEmpty()) continue;
        const int field = FindResultColumn(names, key.c_str());
        if (field < 0)
            ThrowText("The series of this report go by \"%s\", which its query does not return.",
                      key.c_str());
        keys_.push_back({field, {}});
    }
}

bool ReportSeries::Begins(const std::vector<std::string_view>& row) {
    bool begins = !begun_;
    for (Key& key : keys_) {
        const std::string_view value = row[key.field];
        if (value == key.value) continue;
        key.value = value;
        begins = true;
    }
    begun_ = true;
    return begins;
}

std::vector<int> ReportSeries::fields() const {
    std::vector<int> fields;
    for (const Key& key : keys_)
        fields.push_back(key.field);
    return fields;
}

std::string ReportSeries::Title() const {
    std::string text = title_;
    const char* between = title_.empty() ? "" : ": ";
    for (const Key& key : keys_) {
        text.append(between).append(key.value.empty() ? "(none)" : key.value);
        between = ", ";
    }
    return text;
}
