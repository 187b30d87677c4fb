// PdfPage.h: tables as PDF files, below "/Norvane/pdf", where the page "pdf" finds them.
#pragma once

#include <string>
#include <vector>

#include "common/UStringX.h"

class WebContext;

struct PdfColumn {
    std::string heading;
    bool right = false;
};

// A table for paper. Texts are UTF-8.
struct PdfTable {
    std::string title;
    std::string subtitle;
    std::string footer;
    std::vector<PdfColumn> columns;
    std::vector<std::vector<std::string>> rows;
};

// Writes the table into `path`. Throws a text that says what is missing or went wrong.
void WritePdf(const PdfTable& table, const char* path);

// Writes the table into a new file of this session and hands the request on to the page "pdf",
// which sends it: sets the context's internal_redirect. Throws as WritePdf does.
void AnswerWithPdf(WebContext& ctx, const PdfTable& table);
