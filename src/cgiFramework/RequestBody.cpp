// The request's body: read once a process, and turned into arguments by its type.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "cgiFramework/JsonObj.h"
#include "cgiFramework/MultipartBody.h"
#include "cgiFramework/WebContext.h"
#include "common/Parse.h"
#include "common/ThrowText.h"

namespace {

constexpr int64_t kDefaultMaxPost = 64 << 20;
constexpr int64_t kGreatestMaxPost = INT_MAX;  // whatever the setting says: lengths are ints

// The body is gone from standard input once it was read, or refused: a second context of this
// process (the one behind the error page) must not try again.
bool bodyTaken = false;

// Reads until `size` bytes came or the sender stops; a pipe delivers in pieces.
size_t ReadFully(char* buffer, size_t size) {
    size_t got = 0;
    while (got < size) {
        const ssize_t n = read(STDIN_FILENO, buffer + got, size - got);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        got += static_cast<size_t>(n);
    }
    return got;
}

// Takes a refused body from the web server and drops it: one that cannot hand over the whole body
// would not pass on the answer.
void Drain(int64_t length) {
    char block[64 << 10];
    while (length > 0) {
        const size_t wanted = static_cast<size_t>(std::min<int64_t>(length, sizeof block));
        if (ReadFully(block, wanted) < wanted) return;
        length -= static_cast<int64_t>(wanted);
    }
}

size_t AnnouncedLength(const char* text, const char* maxPost) {
    int64_t length = 0;
    if (!ParseInt64(text, length) || length < 0)
        ThrowText("The length of the request is not a number.");
    int64_t limit = kDefaultMaxPost;
    if (*maxPost != '\0' && (!ParseInt64(maxPost, limit) || limit < 0))
        ThrowText("The setting maxPost is not a number of bytes.");
    limit = std::min(limit, kGreatestMaxPost);
    if (length > limit) {
        Drain(length);
        ThrowText("The request is too large: %lld bytes, and the limit is %lld.",
                  static_cast<long long>(length), static_cast<long long>(limit));
    }
    return static_cast<size_t>(length);
}

}  // namespace

bool WebContext::ReadBody() {
    const char* announced = getenv("CONTENT_LENGTH");
    if (bodyTaken || announced == nullptr || *announced == '\0') return false;
    bodyTaken = true;
    const size_t length = AnnouncedLength(announced, GetSetting("maxPost"));
    if (length == 0) return false;
    // Zeroed memory is only touched as bytes arrive, so an announcement alone costs nothing.
    constexpr size_t kTerminator = 10;
    fbuf.reset(static_cast<char*>(calloc(length + kTerminator, 1)));
    if (fbuf == nullptr) ThrowText("There is no memory for a request of %zu bytes.", length);
    body_length_ = ReadFully(fbuf.get(), length);
    return body_length_ > 0;
}

void WebContext::AddBodyArguments() {
    // Reading the last two kinds writes into the body: it can be done only once.
    if (!ReadBody()) return;
    const char* type = getenv("CONTENT_TYPE");
    if (type == nullptr) return;
    if (strcmp(type, "application/x-www-form-urlencoded") == 0)
        AddWebArguments(fbuf.get(), WebArgument::Normal);
    else if (strcmp(type, "application/x-json") == 0)
        json_post_data = std::make_unique<JsonObj>(fbuf.get(), nullptr, 0);
    else if (strstr(type, "multipart/form-data") != nullptr)
        AddMultipartArguments(MultipartBoundary(type));
}

void WebContext::AddMultipartArguments(const std::string& boundary) {
    MultipartBody body(fbuf.get(), body_length_, boundary);
    for (;;) {
        auto part = std::make_unique<WebArgument>();
        if (!body.Next(*part)) return;
        part->depth = depth;
        Remember(std::move(part));
    }
}
