#include "portal/report/LumoraReportSQLCol.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "common/CommandLine.h"
#include "common/Path.h"
#include "common/ThrowText.h"
#include "kernel/OSConsole.h"

namespace {

constexpr char kConfigFolder[] = "/Norvane/config/";

struct CloseFile {
    void operator()(FILE* file) const { fclose(file); }
};
using FileHandle = std::unique_ptr<FILE, CloseFile>;

// Copies as much as fits, never a part of a character.
template <size_t size>
void CopyField(char (&field)[size], const char* word) {
    size_t length = strlen(word);
    if (length >= size) {
        length = size - 1;
        while (length > 0 && (word[length] & 0xC0) == 0x80)
            --length;
    }
    memcpy(field, word, length);
    field[length] = '\0';
}

FileHandle OpenBelowConfig(const std::string& path) {
    if (!path.starts_with(kConfigFolder)) return nullptr;
    FileHandle file(fopen(RootPath(path.c_str()).c_str(), "re"));
    struct stat info;
    if (file != nullptr && (fstat(fileno(file.get()), &info) != 0 || !S_ISREG(info.st_mode)))
        file.reset();
    return file;
}

}  // namespace

LumoraReportSQLCol::LumoraReportSQLCol(const char* dirname, const char* reportFile) {
    const std::string path =
        std::filesystem::path(std::string(dirname) + "/" + reportFile).lexically_normal().string();
    const FileHandle file = OpenBelowConfig(path);
    if (file == nullptr) {
        ConsoleReport("Cannot open SQLCol file %s\n", path.c_str());
        ThrowText("Cannot open SQLCol file");
    }

    char* line = nullptr;
    size_t capacity = 0;
    while (getline(&line, &capacity, file.get()) > 0) {
        line[strcspn(line, "\r\n")] = '\0';
        AddLine(line);
    }
    free(line);
    columns_[count_] = {};
}

void LumoraReportSQLCol::AddLine(const char* line) {
    const CommandLine words(line);
    if (words.argc() == 0) return;
    if (count_ == kMaxColumns - 1) {
        ++dropped_;
        return;
    }
    LumoraSQLColumnDescription& column = columns_[count_++];
    CopyField(column.fieldname, words[0]);
    CopyField(column.style, words[1]);
    CopyField(column.description, words[2]);
    CopyField(column.linkpage, words[3]);
    CopyField(column.linkdetail, words[4]);
    CopyField(column.grouptitle, words[5]);
    CopyField(column.totaltype, words[6]);
    CopyField(column.avgfield, words[7]);
    CopyField(column.percentdiv, words[8]);
}
