#include "portal/report/ReportXlsxWriter.h"

#include <bit>
#include <chrono>
#include <cstdlib>
#include <utility>

#include "cgiFramework/Module.h"
#include "common/Parse.h"
#include "common/ThrowText.h"
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

XlsxModuleCell TextCell(std::string_view raw, std::string& text) {
    text = raw;
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
        texts_[i] = GroupedHeading(columns_[i]);
        headings.push_back(texts_[i].c_str());
    }
    const std::string remark = std::string("Days and times are those of ") + timeZone + ".";
    const XlsxModuleBook book = {path,     scratchFolder,   title,          remark.c_str(),
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
    std::vector<XlsxModuleNote> lines;
    for (const ReportCriterion& note : notes)
        lines.push_back({note.label.c_str(), note.value.c_str()});
    if (!module_.Close(std::exchange(book_, nullptr), lines.data(), lines.size())) Fail();
}

void ReportXlsxWriter::Fail() const {
    ThrowText("The XLSX file could not be made: %s", module_.Problem());
}
