// SQLWebDetail.h: one row of a table as a form: shown, added, changed and deleted.
#pragma once

#include <string>

#include "cgiFramework/SQLRowStore.h"
#include "cgiFramework/WebPage.h"

struct SQLDetailDefinition {
    SQLRowDefinition row;
    std::string noun;       // what the row is, in the middle of a sentence: "SLA"
    std::string naming;     // the field that names the row
    std::string duplicate;  // told when the unique value is taken
    bool removable = false;
};

// Who asks for what. The page has seen to it that the caller has the right to change the row.
struct SQLDetailRequest {
    std::string id;        // of the row; empty: a new one
    bool genuine = false;  // the request belongs to a session of the caller: it may change things
    std::string back;      // URL of the page to return to, or empty
};

// The form, and what a posted one does. It posts to the page that shows it, with the argument
// "index" for the row and "submit" for what to do ("Save", "Delete", and "Delete" with "confirm").
// Whatever cannot be used is told beside its field, and then nothing is written. The row's
// condition is the definition's scope: a row of somebody else is missing.
class SQLWebDetail : public WebItem {
  public:
    enum class Outcome {
        kForm,     // to be shown
        kMissing,  // there is no such row; nothing was added to the page
        kSaved,
        kAdded,
        kDeleted,
    };

    // Does all of it. Throws the server's message.
    SQLWebDetail(WebContext& ctx, SQLSession& db, SQLDetailDefinition definition,
                 SQLDetailRequest request);
    Outcome outcome() const { return outcome_; }

  private:
    using Problems = std::map<std::string, std::string>;  // by field

    void ReadInputs(bool posted);
    void Save();
    void Delete();
    void AddForm();
    void AddButtons(WebItem& form);
    void AddQuestion();
    WebItem& AddPostForm();
    void AddMessage(const std::string& text);

    WebContext& ctx_;
    SQLDetailDefinition definition_;
    SQLDetailRequest request_;
    SQLRowStore store_;
    SQLValues stored_;
    SQLInputs inputs_;
    Problems problems_;
    Outcome outcome_ = Outcome::kForm;
};

// Was the request made by posting a form? Links, however they come about, change nothing.
bool IsPost();
// The text of the argument, or "".
std::string PostedText(const WebContext& ctx, const char* name);
