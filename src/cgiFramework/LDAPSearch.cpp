#include "cgiFramework/LDAPSearch.h"

#include <memory>

#include "kernel/OSConsole.h"
#include "ldap/LDAPSession.h"
#include "ldap/ldap.h"

namespace {

constexpr int kSubtree = 2;
// A branch that a site has no use for is as good as an empty one.
constexpr int kNoSuchObject = 32;

}  // namespace

bool SearchDirectory(LDAPSession& session, const char* base, const char* filter, LDAPTable& rows) {
    // Not LDAPTable::Fetch, which does not tell how the search ended.
    int code = session.Search(base, kSubtree, filter, /*attrs=*/nullptr, /*typesonly=*/0,
                              /*sizelimit=*/0, /*timelimit=*/0, /*deref=*/0);
    while (session.CurrentObject() != nullptr) {
        auto row = std::make_unique<LDAPRow>();
        if (row->Fetch(session)) rows.rows.Append(row.release());
        session.GetNextEntry(code);
    }
    if (code == kLdapSuccess || code == kNoSuchObject) return true;
    ConsoleReport("SearchDirectory: result %d for %s below \"%s\"", code, filter, base);
    return false;
}
