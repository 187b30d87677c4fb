#include "cgiFramework/LDAPWebTable.h"

#include "cgiFramework/LDAPSearch.h"
#include "cgiFramework/UrlArgument.h"
#include "common/Html.h"

namespace {

constexpr char kNoDirectory[] = "The list cannot be shown, because the directory cannot be read.";

WebLink& AddLink(WebItem& parent, const std::string& url, const std::string& caption,
                 const char* more) {
    UString href;
    href.Format("href=\"%s\"%s", HtmlAttr(url.c_str()).c_str(), more);
    WebLink& link = parent.Adopt(new WebLink(href.c_str()));
    link.Add(new WebValue("%s", HtmlText(caption.c_str()).c_str()));
    return link;
}

// The URL with the entry's values in the places of [field].
std::string FillUrl(const std::string& url, LDAPRow& entry) {
    std::string filled;
    for (size_t at = 0; at < url.size();) {
        const size_t open = url.find('[', at);
        const size_t close = url.find(']', open);
        filled.append(url, at, open - at);
        if (open == std::string::npos || close == std::string::npos) break;
        const std::string field = url.substr(open + 1, close - open - 1);
        AppendUrlValue(filled, entry[field.c_str()].value.c_str());
        at = close + 1;
    }
    return filled;
}

}  // namespace

LDAPWebTable::LDAPWebTable(WebContext& ctx, LDAPSession& session,
                           const LDAPTableDefinition& definition)
    : ctx_(ctx), definition_(definition) {
    LDAPTable found;
    if (!SearchDirectory(session, definition.base.c_str(), definition.filter.c_str(), found)) {
        Adopt(new WebDiv("class=\"reportWarning\" role=\"alert\""))
            .Add(new WebValue("%s", kNoDirectory));
        return;
    }
    if (found.GetRowCount() == 0) {
        Adopt(new WebDiv("class=\"notice\" role=\"status\""))
            .Add(new WebValue("Nothing was found."));
        return;
    }
    ChooseOrder();
    SortRows(found);
    WebTable& table =
        Adopt(new WebDiv("class=\"tableScroll\" tabindex=\"0\" role=\"region\" aria-label=\"%s\"",
                         HtmlAttr(definition.title.c_str()).c_str()))
            .Adopt(new WebTable("class=\"reportTable\""));
    AddHeadings(table);
    bool odd = true;
    for (LDAPRow& entry : found.rows) {
        AddRow(table, entry, odd);
        odd = !odd;
    }
}

void LDAPWebTable::ChooseOrder() {
    const auto column = [this](const std::string& field) {
        const LDAPTableColumn* named = nullptr;
        for (const LDAPTableColumn& each : definition_.columns)
            if (named == nullptr && each.field == field) named = &each;
        return named;
    };
    const WebArgument* asked = ctx_.FindWebArgument("sort");
    sort_ = asked != nullptr ? column(asked->Text()) : nullptr;
    if (sort_ != nullptr) {
        const WebArgument* desc = ctx_.FindWebArgument("desc");
        descending_ = desc != nullptr && !desc->IsEmpty();
        return;
    }
    descending_ = definition_.order.starts_with('-');
    sort_ = column(definition_.order.substr(descending_ ? 1 : 0));
    if (sort_ == nullptr) sort_ = definition_.columns.data();
}

void LDAPWebTable::SortRows(LDAPTable& found) const {
    std::string spec = descending_ ? "-" : "+";
    if (!IsRightAligned(sort_->style)) spec += '$';  // as text, not as numbers
    found.Sort((spec + sort_->field).c_str());
}

std::string LDAPWebTable::HeadingUrl(const LDAPTableColumn& column) const {
    std::string url = ctx_.GetPageURL(nullptr);
    AppendUrlArgument(url, "sort", column.field);
    if (&column == sort_ && !descending_) url += "&desc=1";
    return url;
}

void LDAPWebTable::AddHeadings(WebTable& table) {
    WebRow& row = *new WebRow("");
    table.AddHeader(&row);
    for (const LDAPTableColumn& column : definition_.columns) {
        const char* order = "";
        if (&column == sort_)
            order = descending_ ? " aria-sort=\"descending\"" : " aria-sort=\"ascending\"";
        UString css;
        css.Format("scope=\"col\" class=\"%s\"%s", SQLStyleClass(column.style), order);
        AddLink(row.Adopt(new WebCellHeader(css.c_str())), HeadingUrl(column), column.heading,
                " class=\"sortLink\"");
    }
}

void LDAPWebTable::AddRow(WebTable& table, LDAPRow& entry, bool odd) {
    WebRow& row = table.Adopt(new WebRow(odd ? "class=\"oddrow\"" : "class=\"evenrow\""));
    for (const LDAPTableColumn& column : definition_.columns) {
        UString css;
        css.Format("class=\"%s\"", SQLStyleClass(column.style));
        WebCell& cell = row.Adopt(new WebCell(css.c_str()));
        const std::string text =
            SQLCellText(column.style, entry[column.field.c_str()].value.c_str());
        if (column.link.empty())
            cell.Add(new WebValue("%s", HtmlText(text.c_str()).c_str()));
        else
            AddLink(cell, FillUrl(ctx_.GetURL("%s", column.link.c_str()), entry), text, "");
    }
}
