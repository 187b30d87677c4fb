#include "tools/demodata/Tsv.h"

#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <stdexcept>

namespace demodata {

namespace {

constexpr size_t kFlushSize = 1 << 20;

[[noreturn]] void Fail(const std::string& path) {
    throw std::runtime_error(path + ": " + std::strerror(errno));
}

}  // namespace

TsvFile::TsvFile(const std::string& folder, const std::string& table)
    : path_(folder + "/" + table + ".tsv"), file_(std::fopen(path_.c_str(), "wb")) {
    if (file_ == nullptr) Fail(path_);
    buffer_.reserve(kFlushSize + 4096);
}

TsvFile::~TsvFile() {
    if (file_ != nullptr) std::fclose(file_);
}

void TsvFile::Separate() {
    if (rowStarted_) buffer_ += '\t';
    rowStarted_ = true;
}

TsvFile& TsvFile::Plain(std::string_view value) {
    Separate();
    buffer_ += value;
    return *this;
}

TsvFile& TsvFile::Text(std::string_view value) {
    Separate();
    for (const char c : value) {
        if (c == '\t' || c == '\n' || c == '\\') buffer_ += '\\';
        buffer_ += c;
    }
    return *this;
}

TsvFile& TsvFile::Number(int64_t value) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    return Plain({digits, static_cast<size_t>(end - digits)});
}

TsvFile& TsvFile::Null() {
    return Plain("\\N");
}

TsvFile& TsvFile::Stamp(int64_t seconds) {
    using namespace std::chrono;
    const sys_seconds when{std::chrono::seconds(seconds)};
    const sys_days day = floor<days>(when);
    const year_month_day date(day);
    const hh_mm_ss clock(when - day);
    char text[48];
    const int size = std::snprintf(
        text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()));
    return Plain({text, static_cast<size_t>(size)});
}

TsvFile& TsvFile::StampMs(int64_t milliseconds) {
    Stamp(milliseconds / 1000);
    char text[8];
    const int size =
        std::snprintf(text, sizeof text, ".%03d", static_cast<int>(milliseconds % 1000));
    buffer_.append(text, static_cast<size_t>(size));
    return *this;
}

void TsvFile::EndRow() {
    buffer_ += '\n';
    rowStarted_ = false;
    if (buffer_.size() >= kFlushSize) Flush();
}

void TsvFile::Flush() {
    if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) Fail(path_);
    buffer_.clear();
}

void TsvFile::Finish() {
    Flush();
    FILE* file = file_;
    file_ = nullptr;
    if (std::fclose(file) != 0) Fail(path_);
}

void LoadScript::Write(const std::string& folder) const {
    const std::string path = folder + "/load.sql";
    std::string text =
        "-- Replaces the demo data. The paths are relative: run it in this folder,\n"
        "--   mariadb --local-infile=1 ... DATABASE < load.sql\n"
        "SET NAMES utf8mb4;\n"
        "SET time_zone = '+00:00';\n"
        "SET unique_checks = 0, foreign_key_checks = 0;\n";
    for (const Table& table : tables_) {
        text += table.replaced.empty()
                    ? "TRUNCATE TABLE " + table.name + ";\n"
                    : "DELETE FROM " + table.name + " WHERE " + table.replaced + ";\n";
        text += "LOAD DATA LOCAL INFILE '" + table.name + ".tsv' INTO TABLE " + table.name +
                " CHARACTER SET utf8mb4\n    (" + table.columns + ");\n";
    }
    FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) Fail(path);
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    if (std::fclose(file) != 0 || !written) Fail(path);
}

}  // namespace demodata
