// Distinguished names, and how texts compare in the directory: without regard to ASCII case.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace directoryd {

std::string Fold(std::string_view text);
bool SameText(std::string_view a, std::string_view b);

// One part of a name, such as "cn=Trunk 1".
struct Rdn {
    std::string type;
    std::string value;  // without escapes
    std::string text;   // as written

    // Equal for equal parts.
    std::string Key() const { return Fold(type) + "=" + Fold(value); }
};

// Cuts a name into its parts, the entry's own first. A comma ends a part unless a backslash stands
// in front of it; but what follows a comma and holds no "=" still belongs to the part before, as
// some clients put values into names as they are. False for a name that is none.
bool ParseName(std::string_view name, std::vector<Rdn>& parts);

// A part for a type and a value as it is, with the escapes that ParseName takes away.
Rdn MakeRdn(std::string_view type, std::string_view value);

// What attributes can be called.
bool IsAttributeName(std::string_view name);

}  // namespace directoryd
