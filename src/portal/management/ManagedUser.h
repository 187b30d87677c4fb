// ManagedUser.h: a user of the portal whom another one manages, and who may do that.
#pragma once

#include <optional>
#include <string>

class ManagerContext;

struct ManagedUser {
    int id = 0;
    std::string username;
    std::string fullName;
    bool administrator = false;

    // How people know them: the full name where there is one.
    const std::string& Name() const { return fullName.empty() ? username : fullName; }
};

// May the caller manage users of the portal at all? Asks the database. Throws its message.
bool MayManage(ManagerContext& ctx);

// The user of the caller's own customer that the argument "index" names. None for any other id.
std::optional<ManagedUser> FindManagedUser(ManagerContext& ctx);

// Only an administrator changes an administrator.
bool MayManageUser(const ManagerContext& ctx, const ManagedUser& user);

// Makes the caller's next request read again what the session keeps of this user, if it is the
// caller.
void ForgetIfSelf(ManagerContext& ctx, const ManagedUser& user);
