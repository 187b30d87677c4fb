#include "xlsx/XlsxBook.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr lxw_row_t kSheetRows = LXW_ROW_MAX - 1;  // below the heading
constexpr lxw_row_t kMeasuredRows = 1000;
constexpr double kHeadingHeight = 32;  // points, for two lines
constexpr size_t kNarrowest = 9;
constexpr size_t kWidest = 60;
constexpr size_t kLongestText = 32767;
// Larger files than the plain format can hold need so many columns.
constexpr size_t kManyColumns = 40;

// Characters that a number of each kind takes, as it is usually shown.
constexpr size_t kWidths[] = {0, 0, 10, 10, 11, 8, 11, 19};

size_t CharactersOf(const char* text) {
    size_t count = 0;
    for (; *text != '\0'; ++text)
        if ((*text & 0xC0) != 0x80) ++count;
    return count;
}

}  // namespace

XlsxBook::XlsxBook(const XlsxModuleBook& book) {
    std::string scratch = book.scratchFolder;
    lxw_workbook_options options = {
        LXW_TRUE, scratch.data(),
        static_cast<uint8_t>(book.columnCount > kManyColumns ? LXW_TRUE : LXW_FALSE)};
    book_ = workbook_new_opt(book.path, &options);
    if (book_ == nullptr) return;
    // The writer copies these.
    std::string title = book.title;
    std::string remark = book.remark;
    lxw_doc_properties properties{};
    properties.title = title.data();
    properties.comments = remark.data();
    workbook_set_properties(book_, &properties);
    if (*book.timeZone != '\0')
        workbook_set_custom_property_string(book_, "Time zone", book.timeZone);
    for (size_t i = 0; i < book.columnCount; ++i)
        columns_.push_back({book.headings[i]});
    AddFormats();
}

XlsxBook::~XlsxBook() {
    if (book_ != nullptr) lxw_workbook_free(book_);
}

void XlsxBook::AddFormats() {
    const struct {
        XlsxModuleKind kind;
        const char* format;
    } kFormats[] = {
        {kXlsxDuration, "[h]:mm:ss"},
        {kXlsxMoney, "#,##0.00"},
        {kXlsxPercent, "0.0%"},
        {kXlsxDate, "yyyy-mm-dd"},
        {kXlsxDateTime, "yyyy-mm-dd hh:mm:ss"},
    };
    for (const auto& [kind, format] : kFormats) {
        formats_[kind] = workbook_add_format(book_);
        format_set_num_format(formats_[kind], format);
    }
    bold_ = workbook_add_format(book_);
    format_set_bold(bold_);
    format_set_text_wrap(bold_);
    format_set_align(bold_, LXW_ALIGN_VERTICAL_TOP);
}

lxw_error XlsxBook::AddSheet() {
    if (!sheets_.empty()) FinishSheet();
    std::string name = "Report";
    if (!sheets_.empty()) name += " " + std::to_string(sheets_.size() + 1);
    lxw_worksheet* sheet = workbook_add_worksheet(book_, name.c_str());
    if (sheet == nullptr) return LXW_ERROR_MEMORY_MALLOC_FAILED;
    sheets_.push_back(sheet);
    worksheet_freeze_panes(sheet, 1, 0);
    worksheet_repeat_rows(sheet, 0, 0);
    worksheet_set_row(sheet, 0, kHeadingHeight, nullptr);
    for (size_t i = 0; i < columns_.size(); ++i) {
        const lxw_error error = worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(i),
                                                       columns_[i].heading.c_str(), bold_);
        if (error != LXW_NO_ERROR) return error;
    }
    row_ = 1;
    return LXW_NO_ERROR;
}

lxw_error XlsxBook::AddText(lxw_col_t column, const char* text) {
    lxw_worksheet* sheet = sheets_.back();
    if (row_ <= kMeasuredRows)
        columns_[column].widest = std::max(columns_[column].widest, CharactersOf(text));
    if (strlen(text) <= kLongestText)
        return worksheet_write_string(sheet, row_, column, text, nullptr);
    // A cell takes no more; the cut stays between characters.
    size_t length = kLongestText;
    while (length > 0 && (text[length] & 0xC0) == 0x80)
        --length;
    return worksheet_write_string(sheet, row_, column, std::string(text, length).c_str(), nullptr);
}

lxw_error XlsxBook::AddRow(const XlsxModuleCell* cells) {
    if (book_ == nullptr) return LXW_ERROR_MEMORY_MALLOC_FAILED;
    if (sheets_.empty() || row_ > kSheetRows) {
        const lxw_error error = AddSheet();
        if (error != LXW_NO_ERROR) return error;
    }
    for (size_t i = 0; i < columns_.size(); ++i) {
        const auto column = static_cast<lxw_col_t>(i);
        const XlsxModuleCell& cell = cells[i];
        if (cell.kind == kXlsxEmpty) continue;
        lxw_error error = LXW_NO_ERROR;
        if (cell.kind == kXlsxText) {
            error = AddText(column, cell.text);
        } else {
            if (row_ <= kMeasuredRows)
                columns_[i].widest = std::max(columns_[i].widest, kWidths[cell.kind]);
            error = worksheet_write_number(sheets_.back(), row_, column, cell.number,
                                           formats_[cell.kind]);
        }
        if (error != LXW_NO_ERROR) return error;
    }
    ++row_;
    return LXW_NO_ERROR;
}

void XlsxBook::FinishSheet() {
    for (size_t i = 0; i < columns_.size(); ++i) {
        // The heading takes two lines, beside the filter's button.
        const size_t heading = CharactersOf(columns_[i].heading.c_str()) / 2 + 5;
        const size_t width =
            std::clamp(std::max(heading, columns_[i].widest + 1), kNarrowest, kWidest);
        const auto column = static_cast<lxw_col_t>(i);
        worksheet_set_column(sheets_.back(), column, column, static_cast<double>(width), nullptr);
    }
    if (row_ > 1)
        worksheet_autofilter(sheets_.back(), 0, 0, row_ - 1,
                             static_cast<lxw_col_t>(columns_.size() - 1));
}

// Who opens the first sheet alone must see that it is not all.
void XlsxBook::NoteFurtherSheets() {
    if (sheets_.size() < 2) return;
    const std::string last = std::to_string(sheets_.size());
    const std::string text =
        "This sheet is full: the report continues on " +
        (sheets_.size() == 2 ? "sheet \"Report 2\"."
                             : "the sheets \"Report 2\" to \"Report " + last + "\".");
    lxw_worksheet* sheet = sheets_.front();
    // A sheet that is written row by row takes nothing more for its first one; comments are kept
    // apart from the rows, so that is no reason to refuse them.
    const uint8_t optimized = std::exchange(sheet->optimize, uint8_t{LXW_FALSE});
    worksheet_write_comment(sheet, 0, 0, text.c_str());
    sheet->optimize = optimized;
    worksheet_show_comments(sheet);
}

void XlsxBook::AddNotes(const XlsxModuleNote* notes, size_t count) {
    lxw_worksheet* sheet = workbook_add_worksheet(book_, "About");
    if (sheet == nullptr) return;
    worksheet_set_column(sheet, 0, 0, 20, nullptr);
    worksheet_set_column(sheet, 1, 1, kWidest, nullptr);
    for (size_t i = 0; i < count; ++i) {
        const auto row = static_cast<lxw_row_t>(i);
        worksheet_write_string(sheet, row, 0, notes[i].label, bold_);
        worksheet_write_string(sheet, row, 1, notes[i].value, nullptr);
    }
}

lxw_error XlsxBook::Close(const XlsxModuleNote* notes, size_t count) {
    if (book_ == nullptr) return LXW_ERROR_MEMORY_MALLOC_FAILED;
    if (sheets_.empty()) {
        const lxw_error error = AddSheet();
        if (error != LXW_NO_ERROR) return error;
    }
    FinishSheet();
    NoteFurtherSheets();
    AddNotes(notes, count);
    lxw_workbook* book = book_;
    book_ = nullptr;  // the writer frees it in any case
    return workbook_close(book);
}
