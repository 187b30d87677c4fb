#include "pdf/PdfTableWriter.h"

#include <algorithm>
#include <numeric>

namespace {

// Points, 72 an inch. A4 is 595 by 842.
constexpr float kA4Short = 595;
constexpr float kA4Long = 842;
constexpr float kMargin = 42;
constexpr float kBodySize = 8.5F;
constexpr float kTitleSize = 14;
constexpr float kSmallSize = 8;
constexpr float kLineHeight = 11;
constexpr float kRowPadding = 3;  // above and below the lines of a row
constexpr float kGap = 12;        // between columns
constexpr float kFooterRoom = 24;
constexpr float kNarrowest = 30;

}  // namespace

PdfTableWriter::PdfTableWriter(HPDF_Doc document, HPDF_Font plain, HPDF_Font bold,
                               const PdfModuleTable& table)
    : document_(document),
      plain_(plain, kBodySize),
      bold_(bold, kBodySize),
      title_(bold, kTitleSize),
      small_(plain, kSmallSize),
      table_(table) {
    for (size_t i = 0; i < table.columnCount; ++i)
        headings_.push_back(PrintableText(table.columns[i].heading));
    for (size_t r = 0; r < table.rowCount; ++r) {
        std::vector<std::string>& row = rows_.emplace_back();
        for (size_t i = 0; i < table.columnCount; ++i)
            row.push_back(PrintableText(table.cells[r * table.columnCount + i]));
    }
}

void PdfTableWriter::Write() {
    MeasureColumns();
    headingLines_ = BreakRow(bold_, headings_);
    StartPage();
    for (const std::vector<std::string>& cells : rows_)
        WriteRow(plain_, BreakRow(plain_, cells));
    if (rows_.empty()) Show(plain_, kMargin, y_ - kLineHeight, "There is nothing to show.");
    WriteFooters();
}

void PdfTableWriter::MeasureColumns() {
    for (size_t i = 0; i < headings_.size(); ++i) {
        float width = std::max(kNarrowest, bold_.Width(headings_[i]));
        for (const std::vector<std::string>& row : rows_)
            width = std::max(width, plain_.Width(row[i]));
        widths_.push_back(width);
    }
    const float gaps = kGap * static_cast<float>(std::max<size_t>(widths_.size(), 1) - 1);
    const float natural = std::accumulate(widths_.begin(), widths_.end(), gaps);
    across_ = natural > kA4Short - 2 * kMargin;
    pageWidth_ = across_ ? kA4Long : kA4Short;
    pageHeight_ = across_ ? kA4Short : kA4Long;
    ShareWidth(pageWidth_ - 2 * kMargin - gaps);
}

// Columns that need less than an equal share of the room keep their width; the others share what is
// left.
void PdfTableWriter::ShareWidth(float room) {
    std::vector<size_t> order(widths_.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(),
              [this](size_t a, size_t b) { return widths_[a] < widths_[b]; });
    for (size_t i = 0; i < order.size(); ++i) {
        const float share = room / static_cast<float>(order.size() - i);
        widths_[order[i]] = std::min(widths_[order[i]], share);
        room -= widths_[order[i]];
    }
}

PdfTableWriter::Row PdfTableWriter::BreakRow(PdfText& text, const std::vector<std::string>& cells) {
    Row row;
    for (size_t i = 0; i < cells.size(); ++i)
        row.push_back(text.Lines(cells[i], widths_[i]));
    return row;
}

void PdfTableWriter::StartPage() {
    page_ = HPDF_AddPage(document_);
    pages_.push_back(page_);
    HPDF_Page_SetWidth(page_, pageWidth_);
    HPDF_Page_SetHeight(page_, pageHeight_);
    y_ = pageHeight_ - kMargin;
    for (const std::string& line :
         title_.Lines(PrintableText(table_.title), pageWidth_ - 2 * kMargin)) {
        y_ -= kTitleSize;
        Show(title_, kMargin, y_, line);
    }
    y_ -= 6;
    const std::string subtitle = PrintableText(table_.subtitle);
    if (!subtitle.empty()) {
        for (const std::string& line : small_.Lines(subtitle, pageWidth_ - 2 * kMargin)) {
            y_ -= kLineHeight;
            Show(small_, kMargin, y_, line);
        }
    }
    y_ -= 10;
    WriteRow(bold_, headingLines_);
    Rule(y_, 0.3F);
}

void PdfTableWriter::WriteRow(PdfText& text, const Row& row) {
    size_t lines = 1;
    for (const std::vector<std::string>& cell : row)
        lines = std::max(lines, cell.size());
    const float height = static_cast<float>(lines) * kLineHeight + 2 * kRowPadding;
    // The headings themselves begin a page, and a row that no page could hold ends below its foot.
    if (&text != &bold_ && y_ - height < kMargin + kFooterRoom) StartPage();
    float x = kMargin;
    for (size_t i = 0; i < row.size(); ++i) {
        float y = y_ - kRowPadding - kBodySize;
        for (const std::string& line : row[i]) {
            const bool right = table_.columns[i].right != 0;
            Show(text, right ? x + widths_[i] - text.Width(line) : x, y, line);
            y -= kLineHeight;
        }
        x += widths_[i] + kGap;
    }
    y_ -= height;
    Rule(y_, 0.85F);
}

void PdfTableWriter::WriteFooters() {
    const std::string footer = PrintableText(table_.footer);
    for (size_t i = 0; i < pages_.size(); ++i) {
        page_ = pages_[i];
        const std::string number =
            "Page " + std::to_string(i + 1) + " of " + std::to_string(pages_.size());
        Show(small_, kMargin, kMargin, footer);
        Show(small_, pageWidth_ - kMargin - small_.Width(number), kMargin, number);
    }
}

void PdfTableWriter::Show(PdfText& text, float x, float y, const std::string& shown) {
    if (shown.empty()) return;
    HPDF_Page_SetFontAndSize(page_, text.font(), text.size());
    HPDF_Page_BeginText(page_);
    HPDF_Page_TextOut(page_, x, y, shown.c_str());
    HPDF_Page_EndText(page_);
}

void PdfTableWriter::Rule(float y, float gray) {
    HPDF_Page_SetGrayStroke(page_, gray);
    HPDF_Page_SetLineWidth(page_, 0.5F);
    HPDF_Page_MoveTo(page_, kMargin, y);
    HPDF_Page_LineTo(page_, pageWidth_ - kMargin, y);
    HPDF_Page_Stroke(page_);
}
