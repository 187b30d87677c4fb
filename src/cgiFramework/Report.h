// Report.h: pages that are data: lists, forms and PDF lists defined by files of the report folder.
#pragma once

#include <memory>
#include <string>

#include "cgiFramework/SQLTableQuery.h"
#include "cgiFramework/SQLWebDetail.h"
#include "kernel/OSList.h"

class WebContext;

// Who may open a page that a file defines.
struct ReportAccess {
    int needs = 0;    // a right that the caller must hold; 0: none
    int refused = 0;  // a right that closes the page; 0: none
    bool administrator = false;
};

// What a definition file says of its page, apart from name and type. The file has one "key: value"
// a line; a "#" begins a comment line. docs/pages.md lists the keys.
struct ReportDetail {
    std::string title;
    std::string description;
    ReportAccess access;
    std::string customer;  // column or expression that holds the row's customer

    // Of the types "Table" and "pdf". The condition is without that on the customer.
    SQLTableDefinition table;
    std::string addLink;  // a page's arguments that adds a row, or empty

    // Of the type "Form". The scope is without the customer.
    SQLDetailDefinition form;
    std::string rowId;     // which row: digits, "[customerId]", or empty for the argument "index"
    std::string listLink;  // a page's arguments to return to, or empty
};

// One definition: an entry of the context's `reports`.
class Report : public OSListObj {
  public:
    std::string name;     // the page's name
    std::string type;     // "pdf", "Table" or "Form"; of another type nothing is made
    std::string file;     // its name in the report folder
    std::string problem;  // what is wrong with the file, with its line; or empty
    ReportDetail detail;

    // Reads the text of a definition. Never fails: see `problem`.
    Report(std::string file, const std::string& text);
    bool IsKey(const char* key) override { return name == key; }
};

// Fills the context's `reports` from the files "*.report" of its report folder, in the order of
// their names. Files that cannot be read are reported on the console. A second call does nothing.
void ReportBuildPages(WebContext& ctx);
