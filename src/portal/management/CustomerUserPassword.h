// CustomerUserPassword.h: the page on which users change their own password.
#pragma once

#include <string>

#include "portal/theme/StandardPage.h"

class ManagerContext;

// "setting.password": the present password and the new one, twice. The new one is stored hashed
// with the user, and in the file that the setting "passwordFile" names, from which the web server
// takes it; both or neither. Without that setting people sign in otherwise, and the page says so.
// The passwords are taken out of the request before anything else sees it.
class CustomerUserPassword : public StandardPage {
  public:
    explicit CustomerUserPassword(ManagerContext& ctx);

  private:
    struct Entry {
        std::string present;
        std::string wanted;
        std::string repeated;
    };

    static Entry TakeFrom(WebContext& ctx);
    // What is wrong and beside which field, or null.
    const char* Change(ManagerContext& ctx, const Entry& entry, const char*& field);
    void AddForm(ManagerContext& ctx, const char* problem, const char* field);
    void AddField(WebItem& table, const char* name, const char* label, const char* complete,
                  const char* hint, const char* problem);
};

// Is a password changed here at all?
bool HasPasswordFile(ManagerContext& ctx);
