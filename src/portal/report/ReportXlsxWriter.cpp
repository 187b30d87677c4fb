#include "portal/report/ReportXlsxWriter.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "cgiFramework/Module.h"
#include "common/Parse.h"
#include "common/ThrowText.h"
#include "common/Unicode.h"
#include "portal/report/ReportCriteria.h"

namespace {

constexpr int kSecondsPerDay = 86400;
// A double holds that many decimal digits for sure, and so does a spreadsheet.
constexpr size_t kMostDigits = 15;
// Spreadsheets disagree about the days before.
constexpr int kFirstYear = 1901;

const LumoraXlsx& Module() {
    void* entry = LoadModule(kXlsxModuleFile, kXlsxModuleEntry, "XLSX files");
    return *std::bit_cast<LumoraXlsxEntry>(entry)();
}

int Number(std::string_view digits) {
    int number = 0;
    for (const char c : digits)
        number = number * 10 + (c - '0');
    return number;
}

// "yyyy-mm-dd" as days since 1899-12-30.
double DaysOf(std::string_view date) {
    using namespace std::chrono;
    const year_month_day day = year{Number(date.substr(0, 4))} /
                               static_cast<unsigned>(Number(date.substr(5, 2))) /
                               static_cast<unsigned>(Number(date.substr(8, 2)));
    constexpr sys_days kEpoch = year{1899} / 12 / 30;
    return static_cast<double>((sys_days(day) - kEpoch).count());
}

bool IsPlain(std::string_view text) {
    bool plain = true;
    for (const char c : text)
        plain &= c >= ' ' && c <= '~';
    return plain;
}

// The length of the character at the text's begin if a sheet may hold it, else 0: XML 1.0 (section
// 2.2) knows neither U+FFFE and U+FFFF nor, but for line breaks and tabs, control characters.
size_t CharacterLength(std::string_view text) {
    const char first = text.front();
    const auto* bytes = reinterpret_cast<const UTF8*>(text.data());
    if (bytes[0] < 0x80)
        return bytes[0] >= ' ' || (first != '\0' && strchr("\t\n\r", first)) ? 1 : 0;
    if (!isLegalUTF8Sequence(bytes, bytes + text.size())) return 0;
    if (text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF")) return 0;
    return bytes[0] < 0xE0 ? 2 : bytes[0] < 0xF0 ? 3 : 4;
}

// What a sheet cannot hold becomes U+FFFD, byte by byte.
std::string SheetText(std::string_view text) {
    if (IsPlain(text)) return std::string(text);
    std::string clean;
    while (!text.empty()) {
        const size_t length = CharacterLength(text);
        clean += length > 0 ? text.substr(0, length) : "\xEF\xBF\xBD";
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return clean;
}

XlsxModuleCell TextCell(std::string_view raw, std::string& text) {
    text = SheetText(raw);
    return {kXlsxText, 0, text.c_str()};
}

XlsxModuleCell DateCell(std::string_view raw, std::string& text) {
    const XlsxModuleCell asText = TextCell(raw, text);
    const bool isDate = IsDate(text.c_str());
    if ((!isDate && !IsTimestamp(text.c_str())) || Number(raw.substr(0, 4)) < kFirstYear)
        return asText;
    const double days = DaysOf(raw);
    if (isDate) return {kXlsxDate, days, nullptr};
    const int seconds = (Number(raw.substr(11, 2)) * 60 + Number(raw.substr(14, 2))) * 60 +
                        Number(raw.substr(17, 2));
    return {kXlsxDateTime, days + static_cast<double>(seconds) / kSecondsPerDay, nullptr};
}

}  // namespace

XlsxModuleCell MakeXlsxCell(ReportStyle style, std::string_view raw, std::string& text) {
    if (raw.empty()) return {kXlsxEmpty, 0, nullptr};
    if (style == ReportStyle::kText) return TextCell(raw, text);
    if (style == ReportStyle::kDate) return DateCell(raw, text);
    ReportDecimal value;
    if (raw.size() > kMostDigits || !ParseReportDecimal(raw, value)) return TextCell(raw, text);
    const double number = static_cast<double>(value.units) / ReportDecimal::kScale;
    switch (style) {
        case ReportStyle::kTime:
            // Spreadsheets show no time below zero.
            if (number < 0) {
                text.clear();
                AppendReportDecimal(text, style, value);
                return {kXlsxText, 0, text.c_str()};
            }
            return {kXlsxDuration, number / kSecondsPerDay, nullptr};
        case ReportStyle::kMoney:
            return {kXlsxMoney, number, nullptr};
        case ReportStyle::kPercent:
            return {kXlsxPercent, number / 100, nullptr};
        default:
            return {kXlsxNumber, number, nullptr};
    }
}

ReportXlsxWriter::ReportXlsxWriter(std::vector<ReportFileColumn> columns, const char* path,
                                   const char* scratchFolder, const char* title,
                                   const char* timeZone)
    : module_(Module()),
      columns_(std::move(columns)),
      cells_(columns_.size()),
      texts_(columns_.size()) {
    std::vector<const char*> headings;
    for (size_t i = 0; i < columns_.size(); ++i) {
        // One line of headings: those of the groups stand in front.
        texts_[i] = SheetText(GroupedHeading(columns_[i]));
        headings.push_back(texts_[i].c_str());
    }
    const std::string remark = std::string("Days and times are those of ") + timeZone + ".";
    const std::string cleanTitle = SheetText(title);
    const XlsxModuleBook book = {path,     scratchFolder,   cleanTitle.c_str(), remark.c_str(),
                                 timeZone, headings.data(), headings.size()};
    book_ = module_.Open(&book);
    if (book_ == nullptr) Fail();
}

ReportXlsxWriter::~ReportXlsxWriter() {
    if (book_ != nullptr && !module_.Close(book_, nullptr, 0)) book_ = nullptr;
}

void ReportXlsxWriter::AddRow(const std::vector<std::string_view>& row) {
    for (size_t i = 0; i < columns_.size(); ++i)
        cells_[i] = MakeXlsxCell(columns_[i].style, row[columns_[i].field], texts_[i]);
    if (!module_.AddRow(book_, cells_.data())) Fail();
}

void ReportXlsxWriter::Finish(const std::vector<ReportCriterion>& notes) {
    std::vector<std::string> values;
    for (const ReportCriterion& note : notes)
        values.push_back(SheetText(note.value));
    std::vector<XlsxModuleNote> lines;
    for (size_t i = 0; i < notes.size(); ++i)
        lines.push_back({notes[i].label.c_str(), values[i].c_str()});
    if (!module_.Close(std::exchange(book_, nullptr), lines.data(), lines.size())) Fail();
}

void ReportXlsxWriter::Fail() const {
    ThrowText("The XLSX file could not be made: %s", module_.Problem());
}
