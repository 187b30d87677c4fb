#include "portal/report/ReportCsvWriter.h"

#include <algorithm>
#include <utility>

#include "cgiFramework/WebRender.h"

namespace {

constexpr size_t kBlockSize = 64 << 10;

bool LooksLikeFormula(std::string_view text) {
    switch (text.front()) {
        case '=':
        case '@':
        case '\t':
        case '\r':
            return true;
        case '+':
        case '-':
            return text.size() < 2 || text[1] < '0' || text[1] > '9';
        default:
            return false;
    }
}

// Written as a loop without an exit, which the compiler turns into a few wide instructions.
bool HasHighBytes(std::string_view text) {
    unsigned char bits = 0;
    for (const char c : text)
        bits = static_cast<unsigned char>(bits | static_cast<unsigned char>(c));
    return (bits & 0x80) != 0;
}

bool NeedsQuotes(std::string_view text) {
    bool needs = false;
    for (const char c : text)
        needs |= c == ',' || c == '"' || c == '\r' || c == '\n';
    return needs;
}

void AppendValue(std::string& out, ReportStyle style, std::string_view raw) {
    if (raw.empty()) return;
    const bool isText = style == ReportStyle::kText || style == ReportStyle::kDate;
    if (ReportDecimal value; !isText && ParseReportDecimal(raw, value))
        AppendReportDecimal(out, style, value);
    else
        AppendCsvText(out, raw);
}

}  // namespace

void AppendCsvText(std::string& out, std::string_view text) {
    if (text.empty()) return;
    const char* guard = LooksLikeFormula(text) ? "'" : "";
    if (!NeedsQuotes(text)) {
        out.append(guard).append(text);
        return;
    }
    out.append("\"").append(guard);
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    out += '"';
}

ReportCsvWriter::ReportCsvWriter(std::vector<ReportFileColumn> columns, WebRender& out)
    : columns_(std::move(columns)), out_(out) {
    block_.reserve(kBlockSize + kBlockSize / 2);
}

void ReportCsvWriter::AddLine(std::string_view label, std::string_view value) {
    AppendCsvText(block_, label);
    block_ += ',';
    AppendCsvText(block_, value);
    AddEmptyLine();
}

void ReportCsvWriter::AddEmptyLine() {
    block_ += "\r\n";
}

void ReportCsvWriter::AddHeadings() {
    for (const ReportFileColumn& column : columns_) {
        if (&column != columns_.data()) block_ += ',';
        const bool isUnique =
            std::ranges::count(columns_, column.heading, &ReportFileColumn::heading) == 1;
        AppendCsvText(block_, isUnique ? column.heading : GroupedHeading(column));
    }
    AddEmptyLine();
}

void ReportCsvWriter::AddRow(const std::vector<std::string_view>& row) {
    for (const ReportFileColumn& column : columns_) {
        AppendValue(block_, column.style, row[column.field]);
        block_ += ',';
    }
    block_.back() = '\r';
    block_ += '\n';
    if (block_.size() >= kBlockSize) Send();
}

void ReportCsvWriter::Finish() {
    Send();
}

void ReportCsvWriter::Send() {
    isAscii_ = isAscii_ && !HasHighBytes(block_);
    out_.Write(block_);
    block_.clear();
}
