#include "ldap/LDAPRow.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "kernel/OSConsole.h"
#include "ldap/LDAPMod.h"
#include "ldap/LDAPSession.h"

LDAPField::operator int() const {
    using Limits = std::numeric_limits<int>;
    const long long number = std::strtoll(value.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}

LDAPRow::LDAPRow(const LDAPRow& from) : OSListObj(from) {
    for (const LDAPField& field : from.fields)
        fields.Append(new LDAPField(field));
}

LDAPRow& LDAPRow::operator=(const LDAPRow& from) {
    LDAPRow copy(from);
    fields.Clear();
    fields.Splice(copy.fields);
    return *this;
}

LDAPField* LDAPRow::Find(const char* name) const {
    for (LDAPField& field : fields)
        if (field.name == name) return &field;
    return nullptr;
}

LDAPField& LDAPRow::Get(const char* name) {
    static LDAPField empty;
    if (LDAPField* field = Find(name)) return *field;
    if (!empty.value.IsEmpty()) {
        ConsoleReport("LDAPRow Empty value has been changed to %s", empty.value.c_str());
        empty.name = "";
        empty.value = "";
    }
    return empty;
}

void LDAPRow::Field(const char* name, const char* fmt, ...) {
    // Formatted first: an argument may be the field's own value.
    UString value;
    va_list args;
    va_start(args, fmt);
    value.vFormat(fmt, args);
    va_end(args);
    if (LDAPField* field = Find(name))
        field->value = std::move(value);
    else
        fields.Append(new LDAPField(name, value.c_str()));
}

void LDAPRow::Rename(const char* from, const char* to) {
    if (LDAPField* field = Find(from)) field->name = to;
}

void LDAPRow::Print() const {
    for (const LDAPField& field : fields)
        ConsoleReport("%s=%s", field.name.c_str(), field.value.c_str());
}

bool LDAPRow::Fetch(LDAPSession& session) {
    char* name = nullptr;
    char* value = nullptr;
    const char* dn = session.CurrentObject();
    if (dn == nullptr || session.FirstAttribute(name, value) == 0) return false;
    fields.Append(new LDAPField("dn", dn));
    do {
        fields.Append(new LDAPField(name, value));
    } while (session.NextAttribute(name, value) != 0);
    return true;
}

UString LDAPRow::EntryName() const {
    UString name;
    if (const LDAPField* guid = Find("GUID"))
        name.Format("GUID=%s", guid->value.c_str());
    else if (const LDAPField* dn = Find("dn"))
        name = dn->value;
    return name;
}

bool LDAPRow::IsWritten(const LDAPField& field, bool withObjectClass) const {
    const UString& name = field.name;
    if (field.local || name[0] == '_') return false;
    if (name == "dn" || name == "cn" || name == "GUID") return false;
    if (name == "objectclass" && !withObjectClass) return false;
    return !Has((std::string("_") + name.c_str()).c_str());
}

int LDAPRow::Modify(LDAPSession& session) {
    const UString name = EntryName();
    // One more than can be used: the record without type that ends the list.
    std::vector<LDAPMod> mods(fields.size() + 1);
    size_t used = 0;
    for (const LDAPField& field : fields)
        if (IsWritten(field, /*withObjectClass=*/false))
            mods[used++].Set(field.name.c_str(), field.value.c_str());
    if (used > 0 && !name.IsEmpty()) session.Modify(name.c_str(), mods.data());
    return session.res;
}

int LDAPRow::ModifyCN(LDAPSession& session) {
    const LDAPField* guid = Find("GUID");
    const LDAPField* cn = Find("cn");
    if (!Has("dn") || guid == nullptr || guid->value.IsEmpty()) return session.res;
    if (cn == nullptr || cn->value.IsEmpty()) return session.res;
    UString newName;
    newName.Format("cn=%s", cn->value.c_str());
    session.ModRDN(EntryName().c_str(), newName.c_str());
    return session.res;
}

int LDAPRow::Add(LDAPSession& session) {
    const LDAPField* dn = Find("dn");
    std::vector<LDAPMod> mods(fields.size() + 1);
    size_t used = 0;
    for (const LDAPField& field : fields)
        if (IsWritten(field, /*withObjectClass=*/true))
            mods[used++].Set(field.name.c_str(), field.value.c_str());
    if (dn != nullptr && !dn->value.IsEmpty()) session.Add(dn->value.c_str(), mods.data());
    return session.res;
}

int LDAPRow::Delete(LDAPSession& session) {
    const UString name = EntryName();
    if (!name.IsEmpty()) session.Delete(name.c_str());
    return session.res;
}
