#include "cgiFramework/LDAPDropDown.h"

#include "cgiFramework/LDAPSearch.h"
#include "common/Html.h"

bool LDAPDropDownValue::Search(LDAPSession& session, const char* base, const char* filter,
                               const char* valueField) {
    LDAPTable found;
    if (!SearchDirectory(session, base, filter, found)) return false;
    found.Sort("+$cn");
    for (LDAPRow& row : found.rows) {
        const char* value = row[valueField];
        if (*value != '\0') Add(value, row["cn"]);
    }
    return true;
}

LDAPDropDownList::LDAPDropDownList(const char* name_, const char* css_,
                                   const LDAPDropDownValue& value, const char* chosen,
                                   const char* none)
    : WebDropDownList(name_, css_) {
    // Written here, since an item without a value would send its caption.
    if (none != nullptr)
        WebItem::Add(new WebValue("<option value=\"\">%s</option>\n", HtmlText(none).c_str()));
    for (const LDAPDropDownChoice& choice : value.choices)
        WebItem::Add(new WebDropDownListItem(choice.value == chosen,
                                             HtmlAttr(choice.value.c_str()).c_str(),
                                             HtmlText(choice.caption.c_str()).c_str()));
}
