// Html.h: the escapers for text that leaves in an HTML page. Null reads as "".
#pragma once

#include <string>
#include <string_view>

#include "common/UStringX.h"

// For element content: escapes & < >.
UString HtmlText(const char* text);
// For an attribute value between quotes of either kind: escapes & < > " '.
UString HtmlAttr(const char* text);
// HtmlText for loops over many values: appends to `out`.
void AppendHtmlText(std::string& out, std::string_view text);
