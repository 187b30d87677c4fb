#include "cgiFramework/PdfPage.h"

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include <bit>
#include <cstdio>

#include "cgiFramework/Module.h"
#include "cgiFramework/WebContext.h"
#include "common/Path.h"
#include "common/ThrowText.h"
#include "pdf/PdfModule.h"

namespace {

constexpr char kPdfFolder[] = "/Norvane/pdf";

LumoraPdfWriteTable Module() {
    return std::bit_cast<LumoraPdfWriteTable>(
        LoadModule(kPdfModuleFile, kPdfModuleEntry, "PDF files"));
}

// A name that nobody can guess: digits of the kernel's random source behind the session's.
std::string NewFileName(WebContext& ctx) {
    unsigned char bytes[8];
    if (getrandom(bytes, sizeof bytes, 0) != sizeof bytes) ThrowText("No random numbers.");
    std::string name = ctx.GetWebSessionId();
    name += '_';
    for (const unsigned char byte : bytes) {
        char digits[3];
        snprintf(digits, sizeof digits, "%02x", byte);
        name += digits;
    }
    return name + ".pdf";
}

}  // namespace

void WritePdf(const PdfTable& table, const char* path) {
    std::vector<PdfModuleColumn> columns;
    for (const PdfColumn& column : table.columns)
        columns.push_back({column.heading.c_str(), column.right ? 1 : 0});
    std::vector<const char*> cells;
    cells.reserve(table.rows.size() * columns.size());
    for (const std::vector<std::string>& row : table.rows)
        for (size_t i = 0; i < columns.size(); ++i)
            cells.push_back(i < row.size() ? row[i].c_str() : "");
    const PdfModuleTable forModule = {
        table.title.c_str(), table.subtitle.c_str(), table.footer.c_str(), columns.data(),
        columns.size(),      cells.data(),           table.rows.size()};
    const char* problem = Module()(&forModule, path);
    if (problem != nullptr) ThrowText("The PDF file could not be made: %s", problem);
}

void AnswerWithPdf(WebContext& ctx, const PdfTable& table) {
    EnsureFolder(kPdfFolder);
    const std::string name = NewFileName(ctx);
    const UString path = RootPath((std::string(kPdfFolder) + "/" + name).c_str());
    // Made first, so that it is never readable for others.
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) ThrowText("The PDF file could not be made in %s.", kPdfFolder);
    close(fd);
    try {
        WritePdf(table, path.c_str());
    } catch (const char*) {
        unlink(path.c_str());
        throw;
    }
    ctx.internal_redirect.Format("?pagename=pdf&index=%s", name.c_str());
}
