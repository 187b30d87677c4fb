// ReportPlaceholders.h: the square-bracketed placeholders of report templates.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct ReportPlaceholder {
    std::string_view name;  // without brackets
    std::string value;
};

// The template with every "[name]" (letters, digits and "_") replaced by its value, in one pass
// from left to right: a value is never searched for placeholders. Other brackets stay as they are.
// Throws a text that names a placeholder that is not in the list.
std::string FillPlaceholders(std::string_view text, const std::vector<ReportPlaceholder>& values);
