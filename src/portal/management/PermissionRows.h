// PermissionRows.h: what a user of the portal may do and see: rows of CustomerUserRight and
// CallLogPermissions.
#pragma once

#include <set>
#include <span>
#include <string>
#include <vector>

class ManagerContext;
class SQLSession;

// A right, or a prohibition, that a user can hold.
struct UserRight {
    int id;
    const char* caption;
    bool prohibits;
};
std::span<const UserRight> UserRights();

// What a row of CallLogPermissions says of its entity.
struct PermissionFlags {
    bool logging = false;
    bool recording = false;
    bool queue = false;
    bool agent = false;
};
struct PermissionFlag {
    const char* column;  // of the table; also of its inputs
    const char* caption;
    bool PermissionFlags::*flag;
};
std::span<const PermissionFlag> PermissionFlagList();

struct PermissionRow {
    std::string type;    // one of PermissionTypes
    std::string number;  // the directory's number, or the id of an inbox or teammate
    std::string name;    // as far as it is known
    PermissionFlags flags;
};
std::span<const char* const> PermissionTypes();
bool IsPermissionType(const std::string& type);

// The rows of a user of the caller's own customer. Every operation throws the server's message.
class PermissionRows {
  public:
    PermissionRows(ManagerContext& ctx, SQLSession& db, int userId)
        : ctx_(ctx), db_(db), userId_(userId) {}

    // Makes other requests that change this user wait for the end of the transaction.
    void Lock();

    std::set<int> Rights();
    void SetRight(int right, bool held);

    std::vector<PermissionRow> Rows();
    // A row that is gone by now stays away.
    void Update(const PermissionRow& row);
    void Remove(const PermissionRow& row);
    void AddOrReplace(const PermissionRow& row);

    // Finds the entity by its number or its whole name and fills in the row's number and name.
    // Answers what is wrong, or "".
    std::string Find(const std::string& text, PermissionRow& row);

  private:
    ManagerContext& ctx_;
    SQLSession& db_;
    int userId_;
};
