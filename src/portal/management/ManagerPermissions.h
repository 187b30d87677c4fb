// ManagerPermissions.h: the form over the rights of a user of the portal, and over whom they see.
#pragma once

class ManagerContext;
class WebItem;
struct ManagedUser;

// The page. The caller manages users and may manage this one; this function sees to the rest:
// nobody changes their own permissions but an administrator; a right is given or withdrawn only by
// who holds it; and whom somebody sees is changed only by who sees everybody. Administrators do
// all. The caller owns the answer. Throws the server's message.
WebItem* BuildManagerPermissions(ManagerContext& ctx, const ManagedUser& user);
