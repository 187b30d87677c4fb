// ReportMessage.h: the sentences that stand where a report, a form or a list cannot.
#pragma once

#include "cgiFramework/WebPage.h"
#include "common/Html.h"

// A refusal or a failure. The text is escaped here.
class ReportWarning : public WebDiv {
  public:
    explicit ReportWarning(const char* text) : WebDiv("class=\"reportWarning\" role=\"alert\"") {
        Add(new WebValue("%s", HtmlText(text).c_str()));
    }
};

// Nothing wrong, but nothing to show. The text is escaped here.
class ReportNotice : public WebDiv {
  public:
    explicit ReportNotice(const char* text) : WebDiv("class=\"notice\"") {
        Add(new WebValue("%s", HtmlText(text).c_str()));
    }
};
