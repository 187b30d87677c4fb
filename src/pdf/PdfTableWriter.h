// PdfTableWriter.h: lays a table out on pages of A4.
#pragma once

#include <hpdf.h>

#include <string>
#include <vector>

#include "pdf/PdfModule.h"
#include "pdf/PdfText.h"

// Title, headings and footer stand on every page; a row is never split. The sheet lies across when
// its columns need the room. Cells that are too long for their column are broken into lines.
class PdfTableWriter {
  public:
    // The document has both fonts loaded; the table's texts must outlive the writer.
    PdfTableWriter(HPDF_Doc document, HPDF_Font plain, HPDF_Font bold, const PdfModuleTable& table);
    void Write();

  private:
    using Row = std::vector<std::vector<std::string>>;  // the lines of each cell

    void MeasureColumns();
    void ShareWidth(float room);
    Row BreakRow(PdfText& text, const std::vector<std::string>& cells);
    void StartPage();
    void WriteRow(PdfText& text, const Row& row);
    void WriteFooters();
    void Show(PdfText& text, float x, float y, const std::string& shown);
    void Rule(float y, float gray);

    HPDF_Doc document_;
    PdfText plain_;
    PdfText bold_;
    PdfText title_;
    PdfText small_;
    const PdfModuleTable& table_;
    std::vector<std::string> headings_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<float> widths_;
    Row headingLines_;
    bool across_ = false;
    float pageWidth_ = 0;
    float pageHeight_ = 0;
    HPDF_Page page_ = nullptr;
    std::vector<HPDF_Page> pages_;
    float y_ = 0;  // the upper edge of the next row
};
