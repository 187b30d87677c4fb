#include "portal/FileAnswers.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>

#include "cgiFramework/FilePage.h"
#include "cgiFramework/WebRender.h"
#include "common/Path.h"
#include "common/ThrowText.h"
#include "portal/context/ManagerContext.h"

namespace {

constexpr char kPdfFolder[] = "/Norvane/pdf";
constexpr int kPdfSeconds = 60;
constexpr size_t kBlock = 8192;

const char* Argument(const WebContext& ctx, const char* name) {
    const WebArgument* argument = ctx.FindWebArgument(name);
    return argument != nullptr ? argument->Text() : "";
}

bool IsFileName(const char* name) {
    return *name != '\0' && *name != '.' && strchr(name, '/') == nullptr;
}

// The open file and its size, or -1.
int OpenPdf(const char* name, const char* path, off_t& size) {
    if (!IsFileName(name)) return -1;
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
    const int fd = OpenPdf(name, path.c_str(), left);
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

}  // namespace

WebItem* BuildPdf(ManagerContext& ctx) {
    CleanupDir(kPdfFolder, ".pdf", kPdfSeconds);
    const char* name = Argument(ctx, "index");
    if (*name != '\0') SendPdf(name);
    return nullptr;
}

bool IsOwnChart(const char* name, const UString& sessionId) {
    const size_t length = strlen(sessionId.c_str());
    if (length == 0 || strncmp(name, sessionId.c_str(), length) != 0) return false;
    // A further digit would make it another session's.
    return strchr("0123456789", name[length]) == nullptr && strchr(name, '/') == nullptr;
}

WebItem* BuildJsonChart(ManagerContext& ctx) {
    auto page = std::make_unique<FilePage>();
    const char* name = Argument(ctx, "id");
    page->SetDisplayName(name);
    if (IsOwnChart(name, ctx.session_id)) {
        UString path;
        path.Format("/Norvane/sessions/charts/%s", name);
        page->SetFileName(path.c_str());
    }
    return page.release();
}
