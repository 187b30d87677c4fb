#include "portal/theme/ListPage.h"

#include "cgiFramework/FilePage.h"
#include "cgiFramework/PdfPage.h"
#include "cgiFramework/SQLTableFile.h"
#include "common/Html.h"
#include "portal/context/PortalContext.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr struct {
    const char* done;
    const char* text;
} kDoneTexts[] = {{"saved", "Saved."}, {"added", "Added."}, {"deleted", "Deleted."}};

const char* DoneText(const std::string& done) {
    for (const auto& known : kDoneTexts)
        if (done == known.done) return known.text;
    return nullptr;
}

void AddNotice(WebItem& page, const char* text) {
    page.Adopt(new WebDiv("class=\"notice\" role=\"status\"")).Add(new WebValue("%s", text));
}

WebItem* AnswerCsv(PortalContext& ctx, const SQLTableQuery& query) {
    auto page = std::make_unique<FilePage>();
    SQLSession db(ctx.GetSQLSession());
    page->SetContentType("text/csv;charset=utf-8");
    page->SetDisplayName((query.definition().title + ".csv").c_str());
    page->SetStringContent(SQLTableCSV(db, query).c_str());
    return page.release();
}

}  // namespace

void AddDoneNotice(const WebContext& ctx, WebItem& page) {
    const char* text = DoneText(PostedText(ctx, "done"));
    if (text != nullptr) AddNotice(page, text);
}

WebItem* AnswerListPdf(PortalContext& ctx, SQLTableDefinition definition) {
    const SQLTableQuery query(std::move(definition), ctx);
    SQLSession db(ctx.GetSQLSession());
    PdfTable table = SQLTablePdf(db, query);
    db.Query(SqlText("SELECT DATE_FORMAT(NOW(), '%%Y-%%m-%%d %%H:%%i')"));
    db.NextRow();
    table.footer = std::string(ctx.customerName.c_str()) + "  " + db.Column(0);
    AnswerWithPdf(ctx, table);
    return new StandardPage(ctx, /*addToHistory=*/false);
}

WebItem* AnswerList(PortalContext& ctx, SQLTableDefinition definition,
                    const std::vector<SQLListAction>& actions) {
    if (ctx.IsArgumentGiven("pdf")) return AnswerListPdf(ctx, std::move(definition));
    SQLTableQuery query(std::move(definition), ctx);
    if (ctx.IsArgumentGiven("csv")) return AnswerCsv(ctx, query);
    auto page = std::make_unique<StandardPage>(ctx);
    page->title = query.definition().title.c_str();
    AddDoneNotice(ctx, *page);
    SQLSession db(ctx.GetSQLSession());
    page->Add(new SQLWebTable(ctx, db, std::move(query), actions));
    return page.release();
}

WebItem* AnswerDone(PortalContext& ctx, const std::string& title, std::string url,
                    const char* done) {
    auto page = std::make_unique<StandardPage>(ctx, /*addToHistory=*/false);
    page->title = title.c_str();
    url.append("&done=").append(done);
    ctx.client_redirect = url.c_str();
    AddNotice(*page, DoneText(done));
    page->Add(new WebValue("<p><a href=\"%s\">Continue</a></p>", HtmlAttr(url.c_str()).c_str()));
    return page.release();
}

WebItem* AnswerDetail(PortalContext& ctx, SQLDetailDefinition definition,
                      const DetailPageTexts& texts, const std::string& id) {
    const std::string back =
        texts.list.empty() ? ctx.GetPageURL(nullptr) : ctx.GetURL("%s", texts.list.c_str());
    SQLSession db(ctx.GetSQLSession());
    auto detail = std::make_unique<SQLWebDetail>(
        ctx, db, std::move(definition),
        SQLDetailRequest{id, ctx.MayChange(), texts.list.empty() ? "" : back});
    switch (detail->outcome()) {
        case SQLWebDetail::Outcome::kMissing:
            return MessagePage(ctx, texts.title.c_str(), texts.missing.c_str());
        case SQLWebDetail::Outcome::kSaved:
            return AnswerDone(ctx, texts.title, back, "saved");
        case SQLWebDetail::Outcome::kAdded:
            return AnswerDone(ctx, texts.title, back, "added");
        case SQLWebDetail::Outcome::kDeleted:
            return AnswerDone(ctx, texts.title, back, "deleted");
        case SQLWebDetail::Outcome::kForm:
            break;
    }
    // What was posted stays out of the history.
    auto page = std::make_unique<StandardPage>(ctx, /*addToHistory=*/!IsPost());
    page->title = texts.title.c_str();
    AddDoneNotice(ctx, *page);
    page->Add(detail.release());
    return page.release();
}
