// SQLTableFile.h: a list as a file: the same columns and search as on screen, and all rows.
#pragma once

#include <string>

#include "cgiFramework/PdfPage.h"
#include "cgiFramework/SQLSession.h"
#include "cgiFramework/SQLTableQuery.h"

// Comma-separated values for FilePage (per cent signs are doubled): UTF-8 with its mark, so that
// spreadsheets read names as they are. A text that a spreadsheet would take for a formula gets an
// apostrophe in front. Throws the server's message.
std::string SQLTableCSV(SQLSession& db, const SQLTableQuery& query);

// The list for WritePdf. Throws the server's message.
PdfTable SQLTablePdf(SQLSession& db, const SQLTableQuery& query);

// Appends one field of comma-separated values.
void AppendCSVField(std::string& out, std::string_view text);
