#include "cgiFramework/WebForm.h"

#include <cstdlib>
#include <string>
#include <string_view>

#include "common/Html.h"

namespace {

// Adds a hidden copy of the argument unless the form or the copies hold its name already. Nobody
// escaped this value for an attribute: it comes as the browser sent it.
void AddHiddenCopy(WebForm& form, WebItem& copies, const WebArgument& argument) {
    const char* name = argument.name.c_str();
    if (form.Find(name) != nullptr || copies.Find(name) != nullptr) return;
    copies.Add(
        new WebField(HtmlAttr(name).c_str(), "hidden", HtmlAttr(argument.Text()).c_str(), ""));
}

}  // namespace

void WebForm::Globals(WebContext& ctx, const char* names) {
    std::string_view left = names != nullptr ? names : "";
    while (!left.empty()) {
        const size_t end = left.find(' ');
        const std::string wanted(left.substr(0, end));
        left = end == std::string_view::npos ? std::string_view() : left.substr(end + 1);
        const WebArgument* argument = ctx.FindWebArgument(wanted.c_str());
        if (argument != nullptr) AddHiddenCopy(*this, *this, *argument);
    }
}

void WebForm::Render(WebContext& ctx, WebRender* out) {
    out->printf("<form name=\"%s\" method=\"%s\" action=\"%s\" %s>\n", name.c_str(), method.c_str(),
                action.c_str(), css.c_str());
    // Kept apart from the children, so that rendering twice writes the same form twice.
    WebItem copies;
    if (doGlobals) {
        for (const WebArgument& argument : ctx.arguments) {
            if (argument.type_ == WebArgument::Global || argument.type_ == WebArgument::Context)
                AddHiddenCopy(*this, copies, argument);
        }
    }
    copies.Add(new WebField("nodefaults", "hidden", "nodefaults", ""));
    RenderChildren(ctx, out);
    copies.Render(ctx, out);
    out->Write("</form>\n");
}

void WebField::Render(WebContext&, WebRender* out) {
    if (type_ == "textarea") {
        out->printf("<%s name=\"%s\" %s >%s</textarea>", type_.c_str(), name.c_str(), css.c_str(),
                    value.c_str());
    } else if (*value.c_str() == '\0') {
        out->printf("<input type=%s name=\"%s\" %s>\n", type_.c_str(), name.c_str(), css.c_str());
    } else {
        out->printf("<input type=%s name=\"%s\" value=\"%s\" %s>\n", type_.c_str(), name.c_str(),
                    value.c_str(), css.c_str());
    }
}

void WebCheckBoxField::Render(WebContext&, WebRender* out) {
    const bool ticked = strtol(value.c_str(), nullptr, 10) != 0;
    out->printf("<input type=\"%s\" name=\"%s\" %s %s %s>\n", type_.c_str(), name.c_str(),
                ticked ? "checked" : "", css.c_str(), readOnly ? "onclick=\"return false;\"" : "");
}

void WebDropDownList::Render(WebContext& ctx, WebRender* out) {
    out->printf("<select name=\"%s\" %s>\n", name.c_str(), css.c_str());
    RenderChildren(ctx, out);
    out->Write("</select>\n");
}

void WebDropDownListItem::Render(WebContext& ctx, WebRender* out) {
    const bool hasValue = *value.c_str() != '\0';
    out->printf("<option %s %s%s%s>%s", selected ? "selected" : "", hasValue ? "value=\"" : "",
                value.c_str(), hasValue ? "\"" : "", text.c_str());
    RenderChildren(ctx, out);
    out->Write("</option>\n");
}
