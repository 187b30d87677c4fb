#include "cgiFramework/SQLWebTable.h"

#include <algorithm>

#include "cgiFramework/UrlArgument.h"
#include "cgiFramework/WebForm.h"
#include "common/Html.h"

namespace {

std::string Text(std::string_view text) {
    std::string html;
    AppendHtmlText(html, text);
    return html;
}

WebLink& AddLink(WebItem& parent, const std::string& url, const std::string& caption,
                 const char* more = "") {
    UString href;
    href.Format("href=\"%s\"%s", HtmlAttr(url.c_str()).c_str(), more);
    WebLink& link = parent.Adopt(new WebLink(href.c_str()));
    link.Add(new WebValue("%s", Text(caption).c_str()));
    return link;
}

// The first column on screen names the row.
const SQLTableColumn* NamingColumn(const SQLTableDefinition& definition, int& index) {
    for (index = 0; index < static_cast<int>(definition.columns.size()); ++index)
        if (!definition.columns[index].heading.empty()) return &definition.columns[index];
    return nullptr;
}

}  // namespace

SQLWebTable::SQLWebTable(WebContext& ctx, SQLSession& db, SQLTableQuery query,
                         const std::vector<SQLListAction>& actions)
    : ctx_(ctx), query_(std::move(query)), base_(ctx.GetPageURL(nullptr)) {
    db.Query(query_.CountStatement());
    db.NextRow();
    const auto rows = static_cast<uint64_t>(strtoull(db.Column(0), nullptr, 10));
    query_.SetRows(rows);
    db.Query(query_.PageStatement());

    AddSearch();
    AddActions(actions);
    if (rows == 0) {
        Adopt(new WebDiv("class=\"notice\" role=\"status\""))
            .Add(new WebValue("%s", query_.search().empty() ? "There is nothing here yet."
                                                            : "Nothing was found."));
        return;
    }
    WebTable& table =
        Adopt(new WebDiv("class=\"tableScroll\" tabindex=\"0\" role=\"region\" aria-label=\"%s\"",
                         HtmlAttr(query_.definition().title.c_str()).c_str()))
            .Adopt(new WebTable("class=\"reportTable\""));
    AddHeadings(table);
    for (bool odd = true; db.NextRow(); odd = !odd)
        AddRow(db, table, odd);
    AddPager(rows);
}

void SQLWebTable::AddSearch() {
    bool searched = false;
    for (const SQLTableColumn& column : query_.definition().columns)
        searched = searched || column.searched;
    if (!searched) return;
    const UString action = HtmlAttr(ctx_.GetURL(nullptr));
    WebForm& form = Adopt(
        new WebForm("listSearch", "get", action.c_str(), "class=\"listSearch\" role=\"search\""));
    form.Add(new WebValue("<label for=\"q\">Search</label>"));
    form.Add(new WebField("q", "search", HtmlAttr(query_.search().c_str()).c_str(),
                          "id=\"q\" size=\"30\""));
    form.Add(new WebValue("<button>Search</button>"));
    if (!query_.search().empty()) AddLink(form, base_, "Show all");
}

void SQLWebTable::AddActions(const std::vector<SQLListAction>& actions) {
    WebDiv& bar = Adopt(new WebDiv("class=\"reportActions\""));
    for (const SQLListAction& action : actions)
        AddLink(bar, action.url, action.caption);
    const std::string list = Url(query_.sortColumn().field, query_.descending(), 1);
    AddLink(bar, list + "&csv=true", "CSV");
    AddLink(bar, list + "&pdf=true", "PDF");
}

void SQLWebTable::AddHeadings(WebTable& table) {
    WebRow& row = *new WebRow("");
    table.AddHeader(&row);
    for (const SQLTableColumn& column : query_.definition().columns) {
        if (column.heading.empty()) continue;
        const bool sorted = &column == &query_.sortColumn();
        UString css;
        css.Format("scope=\"col\" class=\"%s\"%s", SQLStyleClass(column.style),
                   !sorted               ? ""
                   : query_.descending() ? " aria-sort=\"descending\""
                                         : " aria-sort=\"ascending\"");
        WebLink& link = AddLink(row.Adopt(new WebCellHeader(css.c_str())),
                                Url(column.field, sorted && !query_.descending(), 1),
                                column.heading, " class=\"sortLink\"");
        if (sorted)
            link.Add(new WebValue("<span aria-hidden=\"true\"> %s</span>",
                                  query_.descending() ? "&#9660;" : "&#9650;"));
    }
    if (!query_.definition().rowLinks.empty())
        row.Adopt(new WebCellHeader("scope=\"col\""))
            .Add(new WebValue("<span class=\"srOnly\">Actions</span>"));
}

void SQLWebTable::AddRow(const SQLSession& db, WebTable& table, bool odd) {
    WebRow& row = table.Adopt(new WebRow(odd ? "class=\"oddrow\"" : "class=\"evenrow\""));
    const std::vector<SQLTableColumn>& columns = query_.definition().columns;
    for (size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].heading.empty()) continue;
        UString css;
        css.Format("class=\"%s\"", SQLStyleClass(columns[i].style));
        WebCell& cell = row.Adopt(new WebCell(css.c_str()));
        const std::string text = SQLCellText(columns[i].style, db.View(static_cast<int>(i)));
        if (columns[i].link.empty())
            cell.Add(new WebValue("%s", Text(text).c_str()));
        else
            AddLink(cell, RowUrl(db, columns[i].link), text);
    }
    if (!query_.definition().rowLinks.empty()) AddRowLinks(db, row);
}

void SQLWebTable::AddRowLinks(const SQLSession& db, WebRow& row) {
    int index = 0;
    const bool named = NamingColumn(query_.definition(), index) != nullptr;
    WebCell& cell = row.Adopt(new WebCell("class=\"rowLinks\""));
    for (const SQLRowLink& link : query_.definition().rowLinks) {
        // Many links of one caption: each says which row it is for.
        UString label;
        label.Format(" aria-label=\"%s %s\"", HtmlAttr(link.caption.c_str()).c_str(),
                     named ? HtmlAttr(db.Column(index)).c_str() : "");
        AddLink(cell, RowUrl(db, link.link), link.caption, label.c_str());
    }
}

void SQLWebTable::AddPager(uint64_t rows) {
    const int64_t page = query_.page();
    const int64_t first = (page - 1) * SQLTableQuery::kPageRows + 1;
    const int64_t last =
        std::min<int64_t>(first + SQLTableQuery::kPageRows - 1, static_cast<int64_t>(rows));
    Adopt(new WebDiv("class=\"rowCount\""))
        .Add(new WebValue("%s to %s of %s", std::to_string(first).c_str(),
                          std::to_string(last).c_str(), std::to_string(rows).c_str()));
    if (query_.pages() == 1) return;
    WebItem& pager = Adopt(new WebItem);
    pager.Add(new WebValue("<nav class=\"pager\" aria-label=\"Pages\">"));
    AddPageLink(pager, page > 1 ? 1 : 0, "First");
    AddPageLink(pager, page - 1, "Previous");
    pager.Add(new WebValue("<span>Page %s of %s</span>", std::to_string(page).c_str(),
                           std::to_string(query_.pages()).c_str()));
    AddPageLink(pager, page < query_.pages() ? page + 1 : 0, "Next");
    AddPageLink(pager, page < query_.pages() ? query_.pages() : 0, "Last");
    pager.Add(new WebValue("</nav>"));
}

// A page of number 0 is not there: its place stays, so that the others do not move.
void SQLWebTable::AddPageLink(WebItem& pager, int64_t page, const char* caption) {
    if (page == 0)
        pager.Add(new WebValue("<span class=\"hint\">%s</span>", caption));
    else
        AddLink(pager, Url(query_.sortColumn().field, query_.descending(), page), caption);
}

std::string SQLWebTable::Url(const std::string& sort, bool descending, int64_t page) const {
    std::string url = base_;
    if (!query_.search().empty()) AppendUrlArgument(url, "q", query_.search());
    AppendUrlArgument(url, "sort", sort);
    if (descending) url += "&desc=1";
    if (page > 1) AppendUrlArgument(url, "page", std::to_string(page));
    return url;
}

std::string SQLWebTable::RowUrl(const SQLSession& db, const std::string& link) const {
    const std::vector<SQLTableColumn>& columns = query_.definition().columns;
    std::string url = ctx_.GetURL("%s", link.c_str());
    for (size_t i = 0; i < columns.size(); ++i) {
        const std::string place = "[" + columns[i].field + "]";
        const size_t at = url.find(place);
        if (at == std::string::npos) continue;
        std::string value;
        AppendUrlValue(value, db.View(static_cast<int>(i)));
        url.replace(at, place.size(), value);
    }
    return url;
}
