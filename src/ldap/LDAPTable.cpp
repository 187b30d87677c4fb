#include "ldap/LDAPTable.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_set>
#include <vector>

#include "ldap/LDAPIndexObj.h"
#include "ldap/LDAPSession.h"

namespace {

// A key, and the part of a text that tells most keys apart. Sorting a large table then reads these
// in sequence; to follow each key to its text would leave the processor's cache every time, and so
// cost far more than twice as much for twice the rows.
struct RankedKey {
    uint64_t rank;
    const LDAPIndexObj* key;

    bool operator<(const RankedKey& other) const {
        return rank != other.rank ? rank < other.rank : key->Compare(*other.key) < 0;
    }
};

int Folded(char c) {
    return std::tolower(static_cast<unsigned char>(c));
}

// How many characters all the texts have in common at their beginning.
size_t CommonPrefix(const std::vector<LDAPIndexObj>& keys) {
    const char* const first = keys.front().value.c_str();
    size_t common = std::strlen(first);
    for (const LDAPIndexObj& key : keys) {
        const char* const text = key.value.c_str();
        size_t same = 0;
        while (same < common && Folded(text[same]) == Folded(first[same]))
            ++same;
        common = same;
    }
    return common;
}

// The first characters of `text` as a number that orders as they do.
uint64_t RankOf(const char* text) {
    uint64_t rank = 0;
    for (size_t i = 0; i < sizeof rank; ++i) {
        rank = (rank << 8) | static_cast<uint64_t>(Folded(*text));
        if (*text != '\0') ++text;
    }
    return rank;
}

// At least one key, all made alike. Those of other orders hold their numbers and need no rank.
std::vector<RankedKey> Ranked(const std::vector<LDAPIndexObj>& keys) {
    const bool isText = keys.front().numericalOrder == LDAPIndexObj::kText;
    const size_t common = isText ? CommonPrefix(keys) : 0;
    std::vector<RankedKey> ranked;
    ranked.reserve(keys.size());
    for (const LDAPIndexObj& key : keys) {
        const uint64_t rank = isText ? RankOf(key.value.c_str() + common) : 0;
        ranked.push_back({key.descendingOrder ? ~rank : rank, &key});
    }
    return ranked;
}

}  // namespace

LDAPTable::LDAPTable(const LDAPTable& from) : OSListObj(from) {
    *this += from;
}

LDAPTable& LDAPTable::operator=(const LDAPTable& from) {
    LDAPTable copy(from);
    rows.Clear();
    rows.Splice(copy.rows);
    return *this;
}

void LDAPTable::Fetch(LDAPSession& session, bool append, bool unique) {
    std::unordered_set<std::string> names;
    if (unique)
        for (const LDAPRow& row : rows)
            if (const LDAPField* dn = row.Find("dn")) names.insert(dn->value.c_str());

    for (int code = 0;;) {
        auto row = std::make_unique<LDAPRow>();
        if (!row->Fetch(session)) break;
        if (!unique || names.insert(row->fields.First()->value.c_str()).second) {
            if (append)
                rows.Append(row.release());
            else
                rows.Prepend(row.release());
        }
        if (session.GetNextEntry(code) == 0) break;
    }
    session.Flush();
}

LDAPRow* LDAPTable::Find(const char* name, const char* value) const {
    for (LDAPRow& row : rows) {
        const LDAPField* field = row.Find(name);
        if (field != nullptr && field->value == value) return &row;
    }
    return nullptr;
}

void LDAPTable::Sort(const char* spec) {
    if (rows.size() < 2 || spec == nullptr || *spec == '\0') return;
    const bool ascending = *spec == '+';
    if (ascending || *spec == '-') ++spec;
    LDAPIndexObj::Order order = LDAPIndexObj::kNumber;
    if (*spec == '$') order = LDAPIndexObj::kText;
    if (*spec == ':') order = LDAPIndexObj::kDateTime;
    if (order != LDAPIndexObj::kNumber) ++spec;

    std::vector<LDAPIndexObj> keys;
    keys.reserve(rows.size());
    for (LDAPRow& row : rows)
        keys.emplace_back(row, spec, order, !ascending);
    std::vector<RankedKey> sorted = Ranked(keys);
    std::stable_sort(sorted.begin(), sorted.end());

    // In two passes, of which only the second jumps about in memory.
    while (!rows.empty())
        rows.Unlink(rows.First());
    for (const RankedKey& ranked : sorted)
        rows.Append(ranked.key->r);
}

LDAPRow* LDAPTable::operator[](int index) const {
    if (index < 0) return nullptr;
    for (LDAPRow& row : rows)
        if (index-- == 0) return &row;
    return nullptr;
}

LDAPTable& LDAPTable::operator+=(const LDAPRow& row) {
    rows.Append(new LDAPRow(row));
    return *this;
}

LDAPTable& LDAPTable::operator+=(const LDAPTable& table) {
    // Counted first: the table may be this one.
    size_t left = table.rows.size();
    for (const LDAPRow* row = table.rows.First(); left > 0; --left) {
        *this += *row;
        row = static_cast<const LDAPRow*>(row->next());
    }
    return *this;
}

void LDAPTable::Rename(const char* from, const char* to) {
    for (LDAPRow& row : rows)
        row.Rename(from, to);
}

void LDAPTable::Print() const {
    for (const LDAPRow& row : rows)
        row.Print();
}

int LDAPTable::Modify(LDAPSession& session) {
    for (LDAPRow& row : rows)
        row.Modify(session);
    return session.res;
}

int LDAPTable::Add(LDAPSession& session) {
    for (LDAPRow& row : rows)
        row.Add(session);
    return session.res;
}

int LDAPTable::Delete(LDAPSession& session) {
    for (LDAPRow& row : rows)
        row.Delete(session);
    return session.res;
}
