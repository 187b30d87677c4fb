// LDAPDropDown.h: drop-down lists whose choices come from the directory.
#pragma once

#include <string>
#include <vector>

#include "cgiFramework/WebForm.h"

class LDAPSession;

struct LDAPDropDownChoice {
    std::string value;
    std::string caption;
};

// The choices of a list, in their order.
class LDAPDropDownValue {
  public:
    void Add(const char* value, const char* caption) { choices.push_back({value, caption}); }
    // Appends a choice for each entry below `base` (empty: the whole directory) that the filter
    // finds, in the order of the names ("cn"), which are the captions. The value is the field
    // `valueField`; entries without one are left out. False, and no choice more, when the directory
    // could not be read to the end; the reason has been reported.
    [[nodiscard]] bool Search(LDAPSession& session, const char* base, const char* filter,
                              const char* valueField);

    std::vector<LDAPDropDownChoice> choices;
};

// Shows them, as text that is escaped here.
class LDAPDropDownList : public WebDropDownList {
  public:
    // With `none` the list begins with a choice of that caption whose value is empty. The choice of
    // the value `chosen` is selected, or else the first one.
    LDAPDropDownList(const char* name, const char* css, const LDAPDropDownValue& value,
                     const char* chosen, const char* none);
};
