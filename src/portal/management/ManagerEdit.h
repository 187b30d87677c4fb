// ManagerEdit.h: the details and the permissions of a user of the portal.
#pragma once

class ManagerContext;
class WebItem;

// "manager.edit", or with `permissions` "manager.permissions", for the user that the argument
// "index" names. A user of another customer is answered like one that does not exist. The caller
// owns the answer. Throws the server's message.
WebItem* ManagerEdit(ManagerContext& ctx, bool permissions);
