// Tab-separated files as LOAD DATA reads them, and the script that loads them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace demodata {

// One table's file, written row by row. Throws std::runtime_error when it cannot be written.
class TsvFile {
  public:
    // Creates <folder>/<table>.tsv, or replaces it.
    TsvFile(const std::string& folder, const std::string& table);
    ~TsvFile();
    TsvFile(const TsvFile&) = delete;
    TsvFile& operator=(const TsvFile&) = delete;

    // Appends a field; tabs, line breaks and backslashes in it are escaped.
    TsvFile& Text(std::string_view value);
    // Appends a field that is known to hold nothing to escape.
    TsvFile& Plain(std::string_view value);
    TsvFile& Number(int64_t value);
    TsvFile& Null();
    // Appends a moment, given in milliseconds since 1970-01-01, with its milliseconds.
    TsvFile& StampMs(int64_t milliseconds);
    // Appends a moment, given in seconds since 1970-01-01.
    TsvFile& Stamp(int64_t seconds);
    void EndRow();
    // Writes what is left. Call it once, after the last row.
    void Finish();

  private:
    void Separate();
    void Flush();

    std::string path_;
    FILE* file_;
    std::string buffer_;
    bool rowStarted_ = false;
};

// The tables written, in loading order, each with its columns as the load statement names them.
class LoadScript {
  public:
    // `replaced`: a condition on the rows that the file replaces; empty: all.
    void Add(const std::string& table, const std::string& columns,
             const std::string& replaced = "") {
        tables_.push_back({table, columns, replaced});
    }
    // Writes <folder>/load.sql, which empties the tables and loads the files beside it.
    void Write(const std::string& folder) const;

  private:
    struct Table {
        std::string name;
        std::string columns;
        std::string replaced;
    };
    std::vector<Table> tables_;
};

// Opens tables one after the other and tells the load script of each.
class TableSet {
  public:
    TableSet(const std::string& folder, LoadScript& script) : folder_(folder), script_(script) {}

    // Fills one table: `fill` gets the open file and writes the rows. `replaced` as in LoadScript.
    template <typename Fill>
    void Table(const char* name, const char* columns, Fill fill, const char* replaced = "") {
        TsvFile file(folder_, name);
        fill(file);
        file.Finish();
        script_.Add(name, columns, replaced);
    }

  private:
    std::string folder_;
    LoadScript& script_;
};

}  // namespace demodata
