// ListPage.h: the pages that list rows and change one: how they answer, and how they lead to each
// other.
#pragma once

#include <string>
#include <vector>

#include "cgiFramework/SQLWebDetail.h"
#include "cgiFramework/SQLWebTable.h"

class PortalContext;

// The answer of a list: the page, or the file that the arguments "csv" or "pdf" ask for. After a
// change the page says what was done ("done"). The caller owns it. Throws the server's message.
WebItem* AnswerList(PortalContext& ctx, SQLTableDefinition definition,
                    const std::vector<SQLListAction>& actions = {});

// The list as a PDF file alone; the request is handed on to the page that sends it.
WebItem* AnswerListPdf(PortalContext& ctx, SQLTableDefinition definition);

struct DetailPageTexts {
    std::string title;
    std::string missing;  // told when there is no such row for the caller
    std::string list;     // arguments of the page to return to: "pagename=fr.sla"; or empty
};

// The answer of a form over one row, of the argument "index" unless `id` is given. What was changed
// leads back to the list, so that a reload changes nothing again. The caller owns it, and has seen
// to the rights. Throws the server's message.
WebItem* AnswerDetail(PortalContext& ctx, SQLDetailDefinition definition,
                      const DetailPageTexts& texts, const std::string& id);

// A page that says what was done and sends the browser on to `url`. `done` is a word that
// AnswerList knows: saved, added, deleted.
WebItem* AnswerDone(PortalContext& ctx, const std::string& title, std::string url,
                    const char* done);

// What a page says above its content when the argument "done" names a change.
void AddDoneNotice(const WebContext& ctx, WebItem& page);
