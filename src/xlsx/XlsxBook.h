// XlsxBook.h: a workbook written row by row, of which memory holds one row only.
#pragma once

#include <xlsxwriter.h>

#include <memory>
#include <string>
#include <vector>

#include "xlsx/XlsxModule.h"

class XlsxBook {
  public:
    // The headings are copied.
    explicit XlsxBook(const XlsxModuleBook& book);
    ~XlsxBook();
    XlsxBook(const XlsxBook&) = delete;
    XlsxBook& operator=(const XlsxBook&) = delete;

    // LXW_NO_ERROR, or the writer's code.
    [[nodiscard]] lxw_error AddRow(const XlsxModuleCell* cells);
    [[nodiscard]] lxw_error Close(const XlsxModuleNote* notes, size_t count);

  private:
    void AddFormats();
    [[nodiscard]] lxw_error AddSheet();
    void FinishSheet();
    void NoteFurtherSheets();
    void AddNotes(const XlsxModuleNote* notes, size_t count);
    [[nodiscard]] lxw_error AddText(lxw_col_t column, const char* text);

    struct Column {
        std::string heading;
        size_t widest = 0;  // in characters
    };
    lxw_workbook* book_;
    std::vector<Column> columns_;
    std::vector<lxw_worksheet*> sheets_;
    lxw_format* formats_[kXlsxDateTime + 1] = {};
    lxw_format* bold_ = nullptr;
    lxw_row_t row_ = 0;  // the next one of the present sheet
};
