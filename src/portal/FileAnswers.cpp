#include "portal/FileAnswers.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "cgiFramework/FilePage.h"
#include "cgiFramework/WebRender.h"
#include "common/Path.h"
#include "common/ThrowText.h"
#include "portal/context/ManagerContext.h"

namespace {

constexpr char kPdfFolder[] = "/Norvane/pdf";
constexpr int kPdfSeconds = 60;
constexpr char kChartFolder[] = "/Norvane/sessions/charts";
constexpr size_t kBlock = 8192;

bool IsFileName(const char* name) {
    return *name != '\0' && *name != '.' && strchr(name, '/') == nullptr;
}

// The open file and its size, or -1.
int OpenRegular(const char* path, off_t& size) {
    const int fd = open(RootPath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    struct stat info {};
    if (fd >= 0 && fstat(fd, &info) == 0 && S_ISREG(info.st_mode)) {
        size = info.st_size;
        return fd;
    }
    if (fd >= 0) close(fd);
    return -1;
}

void SendPdf(const char* name) {
    UString path;
    path.Format("%s/%s", kPdfFolder, name);
    off_t left = 0;
    const int fd = IsFileName(name) ? OpenRegular(path.c_str(), left) : -1;
    if (fd < 0) ThrowText("Unable to open pdf file: %s", path.c_str());

    StdoutWebRender out;
    out.Write("Content-Type: application/pdf\n");
    out.printf("Content-Length: %lld\n\n", static_cast<long long>(left));
    char block[kBlock];
    while (left > 0 && !out.Closed()) {
        const ssize_t got = read(fd, block, sizeof block);
        if (got <= 0) break;
        // Never more than was announced, should the file have grown.
        const size_t part = static_cast<size_t>(got < left ? got : left);
        out.Write({block, part});
        out.Flush();
        left -= static_cast<off_t>(part);
    }
    close(fd);
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (null < 0 || dup2(null, STDOUT_FILENO) < 0) ThrowText("There is no /dev/null.");
    close(null);
}

// The chart file's text as a file page takes it, with each per-cent sign doubled; "" without a
// file.
std::string ChartText(const char* name) {
    UString path;
    path.Format("%s/%s", kChartFolder, name);
    off_t size = 0;
    const int fd = OpenRegular(path.c_str(), size);
    if (fd < 0) return {};
    std::string text;
    char block[kBlock];
    for (ssize_t got = 0; (got = read(fd, block, sizeof block)) > 0;) {
        for (const char c : std::string_view(block, static_cast<size_t>(got)))
            text.append(c == '%' ? 2 : 1, c);
    }
    close(fd);
    return text;
}

}  // namespace

WebItem* BuildPdf(ManagerContext& ctx) {
    CleanupDir(kPdfFolder, ".pdf", kPdfSeconds);
    const char* name = ctx.ArgumentText("index");
    if (*name != '\0') SendPdf(name);
    return nullptr;
}

bool IsOwnChart(const char* name, const UString& sessionId) {
    constexpr size_t kRandomDigits = 32;
    const std::string_view own = sessionId.c_str();
    std::string_view rest = name;
    if (own.empty() || !rest.starts_with(own)) return false;
    rest.remove_prefix(own.size());
    return rest.size() == 1 + kRandomDigits + strlen(".json") && rest[0] == '_' &&
           rest.find_first_not_of("0123456789abcdef", 1) == 1 + kRandomDigits &&
           rest.ends_with(".json");
}

WebItem* BuildJsonChart(ManagerContext& ctx) {
    auto page = std::make_unique<FilePage>();
    const char* name = ctx.ArgumentText("id");
    page->SetDisplayName(name);
    if (IsOwnChart(name, ctx.session_id)) page->SetStringContent(ChartText(name).c_str());
    return page.release();
}
