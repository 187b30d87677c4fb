// ReportCsvWriter.h: writes the rows of a report as comma-separated values (RFC 4180).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "portal/report/ReportColumns.h"
#include "portal/report/ReportRowReader.h"

class WebRender;

// Lines end with CR LF. A value stands in quotes only where it holds a comma, a quote or a line
// break; figures read as in the table, and a missing one is empty.
class ReportCsvWriter : public ReportRowReader {
  public:
    // The sink must outlive the writer.
    ReportCsvWriter(std::vector<ReportFileColumn> columns, WebRender& out);
    ReportCsvWriter(const ReportCsvWriter&) = delete;
    ReportCsvWriter& operator=(const ReportCsvWriter&) = delete;

    // Lines above the headings: a label and its value, each.
    void AddLine(std::string_view label, std::string_view value);
    void AddEmptyLine();
    // Headings that several columns share have their group's in front.
    void AddHeadings();
    void AddRow(const std::vector<std::string_view>& row) override;
    // Hands on what is left.
    void Finish();

    // Was all text so far, after Finish, of the characters that every reader knows?
    bool isAscii() const { return isAscii_; }

  private:
    void Send();

    const std::vector<ReportFileColumn> columns_;
    WebRender& out_;
    std::string block_;
    bool isAscii_ = true;
};

// Appends a text as a value. Spreadsheets take some texts for formulas; those begin with an
// apostrophe here: what begins with =, @, a tab or CR, or with + or - that no digit follows.
void AppendCsvText(std::string& out, std::string_view text);
