// ReportView.h: how a request wants a report's result: its form, order and part.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/UStringX.h"

class LumoraReportSQLCol;
class WebContext;
struct LumoraSQLColumnDescription;
struct ReportDefinition;

// What the request does not say, or says in a way that means nothing, is the default.
struct ReportView {
    enum Form { kScreen, kPrint, kCsv, kXlsx };
    static constexpr uint64_t kAllRows = 0;

    Form form = kScreen;      // "print", "csv", "xlsx"
    UString sort;             // field of the column to sort by; empty: the template's own order
    bool descending = false;  // "dir"
    uint64_t page = 1;        // of the screen
    uint64_t rows = 500;      // a page; files and paper have all of them
    bool criteria = false;    // "criteria": a file of text begins with the criteria
    bool graphOnly = false;   // "graphonly"
    bool tableOnly = false;   // "tableonly"

    ReportView() = default;
    ReportView(const WebContext& ctx, const LumoraReportSQLCol& columns);

    // The row that the shown part begins with, and how many there are in it at most.
    uint64_t FirstRow() const { return rows == kAllRows ? 0 : (page - 1) * rows; }
    uint64_t MostRows() const { return rows == kAllRows ? UINT64_MAX : rows; }
    // The column to sort by, or null.
    const LumoraSQLColumnDescription* SortColumn(const LumoraReportSQLCol& columns) const;
    // The statement that brings the rows in the order asked for. The series stay together.
    std::string Sorted(std::string query, const LumoraReportSQLCol& columns,
                       const ReportDefinition& definition) const;
};

// The choices of rows a page; kAllRows is one more.
extern const std::vector<uint64_t> kRowsAPage;
