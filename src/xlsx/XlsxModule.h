// XlsxModule.h: what the workbook module offers to the program that loads it. The module is a
// shared library beside the program, so that pages without a workbook do not pay for the writer's
// start.
#pragma once

#include <cstddef>

enum XlsxModuleKind {
    kXlsxEmpty,
    kXlsxText,
    kXlsxNumber,
    kXlsxDuration,  // in days
    kXlsxMoney,
    kXlsxPercent,   // 1 is a hundred per cent
    kXlsxDate,      // days since 1899-12-30
    kXlsxDateTime,  // the same with the time of day as a fraction
};

struct XlsxModuleCell {
    XlsxModuleKind kind;
    double number;
    const char* text;  // of kXlsxText: UTF-8, ended by a NUL
};

// All texts are UTF-8, ended by a NUL, and stay the caller's.
struct XlsxModuleBook {
    const char* path;           // of the file, which may exist
    const char* scratchFolder;  // for files that go with the process
    const char* title;
    const char* remark;    // of the document
    const char* timeZone;  // the document's property of that name
    const char* const* headings;
    size_t columnCount;
};

struct XlsxModuleNote {
    const char* label;
    const char* value;
};

// Where a call fails it says so, and Problem tells why in a text that lives until the next call.
// A book that was opened is to be closed, also after a failure.
struct LumoraXlsx {
    // Null: failed.
    void* (*Open)(const XlsxModuleBook* book);
    // Writes the next row, a cell a column. Rows that a sheet has no room for go to a further one.
    // False: failed.
    bool (*AddRow)(void* book, const XlsxModuleCell* cells);
    // Writes the notes on a sheet of their own and ends the file. False: failed.
    bool (*Close)(void* book, const XlsxModuleNote* notes, size_t count);
    const char* (*Problem)();
};
using LumoraXlsxEntry = const LumoraXlsx* (*)();

constexpr char kXlsxModuleFile[] = "lumora-xlsx.so";
constexpr char kXlsxModuleEntry[] = "lumora_xlsx";
