// PdfModule.h: what the PDF module offers to the program that loads it. The module is a shared
// library beside the program, so that pages without a PDF do not pay for the writer's start.
#pragma once

#include <cstddef>

// All texts are UTF-8, ended by a NUL, and stay the caller's.
struct PdfModuleColumn {
    const char* heading;
    int right;  // 1: its cells are flush right
};

struct PdfModuleTable {
    const char* title;     // on top of each page, and the document's own title
    const char* subtitle;  // below it; may be empty
    const char* footer;    // at the foot of each page, beside the page's number
    const PdfModuleColumn* columns;
    size_t columnCount;
    const char* const* cells;  // row by row
    size_t rowCount;
};

// Writes the table into the file, which may exist. Answers null, or what went wrong in a text that
// lives until the next call.
using LumoraPdfWriteTable = const char* (*)(const PdfModuleTable* table, const char* path);

constexpr char kPdfModuleFile[] = "lumora-pdf.so";
constexpr char kPdfModuleEntry[] = "lumora_pdf_write_table";
