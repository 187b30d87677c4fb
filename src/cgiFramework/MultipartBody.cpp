#include "cgiFramework/MultipartBody.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr size_t kLongestCopied = 1000;

bool IsLineEnd(char c) {
    return c == '\r' || c == '\n';
}

// Of the line end in front of a boundary, which belongs to the boundary.
char* WithoutLineEnd(const char* begin, char* end) {
    if (end > begin && end[-1] == '\n') --end;
    if (end > begin && end[-1] == '\r') --end;
    return end;
}

// The text between `start` and the next double quote; empty when `start` does not occur.
std::string_view Quoted(std::string_view line, std::string_view start) {
    const size_t at = line.find(start);
    if (at == std::string_view::npos) return {};
    line.remove_prefix(at + start.size());
    return line.substr(0, line.find('"'));
}

void ReadHeader(std::string_view line, WebArgument& part) {
    constexpr std::string_view kDisposition = "Content-Disposition: form-data; name=\"";
    constexpr std::string_view kType = "Content-Type: ";
    if (line.starts_with(kDisposition)) {
        const std::string_view name = Quoted(line, kDisposition);
        part.name = std::string(name).c_str();
        line.remove_prefix(kDisposition.size() + name.size());
        part.filename = std::string(Quoted(line, "filename=\"")).c_str();
    } else if (line.starts_with(kType)) {
        part.content = std::string(line.substr(kType.size())).c_str();
    }
}

// Reads the header lines and answers where the content begins: behind the blank line, or at `end`.
char* ReadHeaders(char* p, char* end, WebArgument& part) {
    while (p < end) {
        char* lineEnd = std::find(p, end, '\n');
        char* const next = lineEnd < end ? lineEnd + 1 : end;
        if (lineEnd > p && lineEnd[-1] == '\r') --lineEnd;
        if (lineEnd == p) return next;
        ReadHeader(std::string_view(p, static_cast<size_t>(lineEnd - p)), part);
        p = next;
    }
    return end;
}

}  // namespace

MultipartBody::MultipartBody(char* body, size_t size, const std::string& boundary)
    : begin_(body), end_(body + size), marker_("--" + boundary), next_(FindBoundary(body).behind) {}

MultipartBody::Boundary MultipartBody::FindBoundary(char* from) const {
    const char* p = from;
    while (const void* found =
               memmem(p, static_cast<size_t>(end_ - p), marker_.data(), marker_.size())) {
        char* const line = from + (static_cast<const char*>(found) - from);
        p = line + marker_.size();
        if (line > from && line[-1] != '\n') continue;
        char* behind = line + marker_.size();
        // "--" closes the body; a letter makes it the longer boundary of something inside.
        if (end_ - behind >= 2 && behind[0] == '-' && behind[1] == '-') return {line, nullptr};
        while (behind < end_ && (*behind == ' ' || *behind == '\t'))
            ++behind;
        if (behind < end_ && !IsLineEnd(*behind)) continue;
        while (behind < end_ && IsLineEnd(*behind))
            ++behind;
        return {line, behind};
    }
    return {end_, nullptr};
}

bool MultipartBody::Next(WebArgument& part) {
    if (next_ == nullptr) return false;
    const Boundary boundary = FindBoundary(next_);
    const bool isLast = boundary.line == end_;
    char* const data = ReadHeaders(next_, boundary.line, part);
    next_ = boundary.behind;
    const bool isFile = !part.content.IsEmpty();
    if (isLast && !isFile) return false;

    char* const dataEnd = isLast ? end_ : WithoutLineEnd(data, boundary.line);
    const size_t size = static_cast<size_t>(dataEnd - data);
    if (!isFile) std::fill(dataEnd, boundary.line, '\0');
    if (isFile || size > kLongestCopied) {
        part.data = data;
        part.length = static_cast<int>(size);
        return true;
    }
    std::string text(data, size);
    std::erase(text, '\0');
    part.value = text.c_str();
    return true;
}

std::string MultipartBoundary(const char* contentType) {
    constexpr std::string_view kKey = "boundary=";
    std::string_view text = contentType;
    const size_t at = text.find(kKey);
    if (at == std::string_view::npos) throw "POST Data no boundary";
    text.remove_prefix(at + kKey.size());
    if (text.starts_with('"')) {
        text.remove_prefix(1);
        text = text.substr(0, text.find('"'));
    } else {
        text = text.substr(0, text.find(';'));
        while (text.ends_with(' '))
            text.remove_suffix(1);
    }
    if (text.empty()) throw "POST Data no boundary";
    return std::string(text);
}
