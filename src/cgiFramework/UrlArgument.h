// UrlArgument.h: arguments of a URL whose values may be any text.
#pragma once

#include <string>
#include <string_view>

// Appends "&name=value". Everything in the value but letters, digits and "-._~" is percent-encoded,
// so that signs like "+" and "#" arrive as they are. The URL has a "?" already.
void AppendUrlArgument(std::string& url, std::string_view name, std::string_view value);
// The encoded value alone.
void AppendUrlValue(std::string& url, std::string_view value);
