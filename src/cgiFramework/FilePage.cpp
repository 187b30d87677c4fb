#include "cgiFramework/FilePage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "common/Path.h"

namespace {

struct CloseFile {
    void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

// Header lines end at line breaks and names at quotes: a report may carry any name.
UString HeaderText(const UString& text, bool quoted) {
    std::string clean;
    for (const char* p = text.c_str(); *p != '\0'; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        if (c >= ' ' && c != 0x7F && !(quoted && c == '"')) clean += *p;
    }
    return UString(clean.c_str());
}

// Null for all but regular files: a fifo or device could keep the request for ever.
File OpenRegular(const char* path) {
    const int fd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) return nullptr;
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        close(fd);
        return nullptr;
    }
    return File(fdopen(fd, "r"));
}

std::string ReadFile(const char* path) {
    constexpr size_t kBlock = 16 << 10;
    std::string text;
    const File file = OpenRegular(path);
    if (file == nullptr) return text;
    char block[kBlock];
    while (const size_t got = fread(block, 1, sizeof block, file.get()))
        text.append(block, got);
    return text;
}

std::string SinglePercents(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        out += text[i];
        if (text.substr(i, 2) == "%%") ++i;
    }
    return out;
}

}  // namespace

void FilePage::Render(WebContext&, WebRender* out) {
    const UString name = HeaderText(displayName.IsEmpty() ? fname : displayName, /*quoted=*/true);
    const UString type = HeaderText(contentType, /*quoted=*/false);
    UString lines;
    lines.Format("Content-type: %s name=\"%s\"\nContent-Disposition: attachment; filename=\"%s\"\n",
                 type.c_str(), name.c_str(), name.c_str());
    header += lines;
    out->Write(header.c_str());
    out->Write("\n");
    RenderContent(*out);
}

void FilePage::RenderContent(WebRender& out) {
    if (!stringContent.IsEmpty())
        out.Write(SinglePercents(stringContent.c_str()));
    else if (!fname.IsEmpty())
        out.Write(SinglePercents(ReadFile(RootPath(fname.c_str()).c_str())));
}
