// LDAPWebDetail.h: one entry of the directory as a form: shown and changed.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "cgiFramework/SQLField.h"
#include "cgiFramework/WebPage.h"
#include "ldap/LDAPRow.h"

class LDAPSession;

struct LDAPDetailDefinition {
    std::string base;    // below which entry; empty: the whole directory
    std::string filter;  // finds the entry; texts from elsewhere stand in it behind SlashHex
    std::vector<SQLField> fields;  // `column` is the attribute; "cn" renames the entry
};

// Who asks for what. The page has seen to it that the caller has the right to change the entry.
struct LDAPDetailRequest {
    bool genuine = false;  // the request belongs to a session of the caller: it may change things
    std::string back;      // URL of the page to return to, or empty
};

// The form, and what a posted one ("submit" is "Save") does: only what differs is written. What
// cannot be used is told beside its field, and then nothing is written; neither is an attribute X
// beside which the entry has "_X", since that is worked out by the directory.
class LDAPWebDetail : public WebItem {
  public:
    enum class Outcome {
        kForm,     // to be shown
        kMissing,  // there is no such entry; nothing was added to the page
        kFailed,   // the directory does not answer; the page says so
        kSaved,
    };

    // Does all of it.
    LDAPWebDetail(WebContext& ctx, LDAPSession& session, LDAPDetailDefinition definition,
                  LDAPDetailRequest request);
    Outcome outcome() const { return outcome_; }

  private:
    bool ReadEntry();
    void ReadInputs(bool posted);
    void Save();
    bool Write(const std::map<std::string, std::string>& values);
    bool IsComputed(const SQLField& field) const;
    void AddForm();
    void AddMessage(const char* text);

    WebContext& ctx_;
    LDAPSession& session_;
    LDAPDetailDefinition definition_;
    LDAPDetailRequest request_;
    LDAPRow entry_;
    SQLInputs inputs_;
    std::map<std::string, std::string> problems_;  // by field
    Outcome outcome_ = Outcome::kForm;
};
