// LDAPRow.h: LDAPRow, a directory entry in memory, and its way back into the directory.
#pragma once

#include "kernel/OSList.h"
#include "ldap/LDAPField.h"

class LDAPSession;

// Fields in order. A row that was fetched begins with the field "dn", the entry's name. Where
// several fields have one name, the first counts. Names compare byte by byte.
//
// Writing leaves out what is not the entry's own: local fields, "dn", "cn" and "GUID", names that
// begin with "_", and each field X beside which there is a field "_X".
class LDAPRow : public OSListObj {
  public:
    LDAPRow() = default;
    LDAPRow(const LDAPRow& from);
    LDAPRow& operator=(const LDAPRow& from);

    // The field, or one shared empty field, which is not to be written to.
    LDAPField& Get(const char* name);
    LDAPField& operator[](const char* name) { return Get(name); }
    bool Has(const char* name) const { return Find(name) != nullptr; }
    // The first field of that name, or null.
    LDAPField* Find(const char* name) const;
    // Sets a value; a field that is missing is made at the end.
    void Field(const char* name, const char* fmt, ...) __attribute__((format(printf, 3, 4)));
    void Rename(const char* from, const char* to);
    // Reports each field on the console.
    void Print() const;
    void Flush() { fields.Clear(); }

    // Appends the name and the attributes of the session's current entry. False, and no change,
    // when there is no entry or it has no attributes.
    bool Fetch(LDAPSession& session);

    // These answer the session's `res`. The entry is that of the field "GUID", or else of "dn";
    // without both nothing is sent.
    // Replaces the value of each field; without any, nothing is sent.
    int Modify(LDAPSession& session);
    // Renames the entry with this GUID to this "cn"; a row without "dn", or with either of the two
    // empty, sends nothing.
    int ModifyCN(LDAPSession& session);
    // Makes an entry named by "dn" of the fields, "objectclass" included.
    int Add(LDAPSession& session);
    int Delete(LDAPSession& session);

    OSList<LDAPField> fields;

  private:
    // The name that the directory knows the entry by; empty when the row does not say.
    UString EntryName() const;
    bool IsWritten(const LDAPField& field, bool withObjectClass) const;
};
