// SQLRowStore.h: reads and writes one row, and attributes that belong to it, as a definition says.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cgiFramework/SQLField.h"
#include "cgiFramework/SQLSession.h"

// Further values of a row, one row of another table each. A value that is empty has no row.
struct SQLAttributeTable {
    std::string table;
    std::string owner;  // column with the key of the row that it belongs to
    std::string name;
    std::string value;
};

// Which row of which table a form is about. All identifiers are ours.
struct SQLRowDefinition {
    std::string table;
    std::string key = "id";
    // Columns that hold these values in every row the caller may touch, such as the customer. Never
    // empty: rows are read and written under this condition only, and a new row gets the values.
    std::vector<std::pair<std::string, std::string>> scope;
    SQLAttributeTable attributes;
    std::vector<SQLField> fields;
    std::string unique;  // the field whose value occurs once among the rows of the scope; or empty
};

// Stored values by the fields' names.
using SQLValues = std::map<std::string, std::string>;

class SQLRowStore {
  public:
    enum class Result { kDone, kMissing, kDuplicate };

    // Both are borrowed. Every operation throws the server's message; a write that fails leaves
    // nothing behind.
    SQLRowStore(SQLSession& db, const SQLRowDefinition& definition)
        : db_(db), definition_(definition) {}

    // False when there is no such row for the caller. `id` is any text.
    [[nodiscard]] bool Read(const std::string& id, SQLValues& values);
    Result Update(const std::string& id, const SQLValues& values);
    // A row that is there already with just these values is the one of an earlier, same request.
    Result Insert(const SQLValues& values);
    Result Remove(const std::string& id);

  private:
    std::string RowCondition(const std::string& id) const;
    std::string ScopeCondition() const;
    std::string LockName() const;
    void ReadAttributes(const std::string& id, SQLValues& values);
    void WriteAttributes(const std::string& id, const SQLValues& values);
    // Is the unique value taken by another row than `id`? Then `same` tells whether that row holds
    // all of the values.
    bool IsTaken(const std::string& id, const SQLValues& values, bool& same);
    std::string Assignments(const SQLValues& values, const char* separator) const;

    SQLSession& db_;
    const SQLRowDefinition& definition_;
};
