// LDAPTable.h: LDAPTable, what a directory search found, in memory.
#pragma once

#include "kernel/OSList.h"
#include "ldap/LDAPRow.h"

class LDAPTable : public OSListObj {
  public:
    LDAPTable() = default;
    LDAPTable(const LDAPTable& from);
    LDAPTable& operator=(const LDAPTable& from);

    // Reads the entries of the session's running search and ends the search. With `append` they go
    // behind the rows that are there, else each one in front. With `unique`, an entry whose "dn"
    // the table has already is dropped. An entry without attributes ends the reading.
    void Fetch(LDAPSession& session, bool append, bool unique);

    // The first row whose field `name` has exactly this value, or null.
    LDAPRow* Find(const char* name, const char* value) const;
    // Orders the rows by a field. `spec` is its name, behind an optional "+" (ascending) or "-"
    // (descending) and then an optional "$" (text without regard to ASCII case) or ":" (date and
    // time as "14:05 3/11/2023"). Without them the order is descending and numeric. Equal rows keep
    // their order.
    //
    //   users.Sort("+$cn");  // by name, A to Z
    void Sort(const char* spec);

    int GetRowCount() const { return static_cast<int>(rows.size()); }
    // The row at `index`, found by walking; null when there is none.
    LDAPRow* operator[](int index) const;
    // Append copies.
    LDAPTable& operator+=(const LDAPRow& row);
    LDAPTable& operator+=(const LDAPTable& table);
    // In every row.
    void Rename(const char* from, const char* to);
    void Print() const;
    void Flush() { rows.Clear(); }

    // Row by row; they answer the session's `res`.
    int Modify(LDAPSession& session);
    int Add(LDAPSession& session);
    int Delete(LDAPSession& session);

    OSList<LDAPRow> rows;
};
