#include "portal/management/ManagedUser.h"

#include "cgiFramework/SQLWebDetail.h"
#include "common/Parse.h"
#include "portal/Dispatch.h"
#include "portal/context/ManagerContext.h"

namespace {

constexpr int kManagerSearch = 4;
constexpr int kRestrictedUser = 8;
constexpr int kFirstContact = 1;  // an administrator whatever its attribute says

constexpr char kUserSql[] =
    "SELECT id, username, fullName, EXISTS (SELECT 1 FROM CustomerContactAttrib WHERE userid=c.id "
    "AND attribname='administrator' AND attribvalue='1') FROM CustomerContact AS c "
    "WHERE id='%s' AND customerid='%i'";
enum { kId, kUserName, kFullName, kAdministrator };

}  // namespace

bool MayManage(ManagerContext& ctx) {
    return CheckSecurityLevel(ctx, kManagerSearch) && !CheckSecurityLevel(ctx, kRestrictedUser);
}

std::optional<ManagedUser> FindManagedUser(ManagerContext& ctx) {
    const std::string id = PostedText(ctx, "index");
    if (!IsDigits(id.c_str(), 1, 9)) return std::nullopt;
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kUserSql, SqlQuoted(id.c_str()), ctx.customerId));
    if (!db.NextRow()) return std::nullopt;
    const bool administrator =
        db.IntColumn(kAdministrator) == 1 || db.IntColumn(kId) == kFirstContact;
    return ManagedUser{db.IntColumn(kId), db.Column(kUserName), db.Column(kFullName),
                       administrator};
}

bool MayManageUser(const ManagerContext& ctx, const ManagedUser& user) {
    return ctx.isAdministrator() || !user.administrator;
}

void ForgetIfSelf(ManagerContext& ctx, const ManagedUser& user) {
    if (user.id != ctx.contactId) return;
    ctx.RemoveWebSessionVars("portalContext");
    ctx.RemoveWebSessionVars("isSuperVisor");
}
