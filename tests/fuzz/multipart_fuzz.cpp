// Bodies of forms with files. The first line is the content type.
#include <algorithm>
#include <vector>

#include "cgiFramework/MultipartBody.h"
#include "fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const uint8_t* const end = data + size;
    const uint8_t* const lineEnd = std::find(data, end, '\n');
    std::string boundary;
    try {
        boundary = MultipartBoundary(TextOf(data, static_cast<size_t>(lineEnd - data)).c_str());
    } catch (const char*) {
        return 0;
    }
    std::vector<char> body(lineEnd == end ? end : lineEnd + 1, end);
    const size_t length = body.size();
    body.push_back('\0');
    body.shrink_to_fit();

    MultipartBody parts(body.data(), length, boundary);
    const char* behind = body.data();
    for (;;) {
        WebArgument part;
        if (!parts.Next(part)) return 0;
        if (part.data == nullptr) {
            Require(part.length == 0, "a copied field has no length");
            Require(part.value.GetLength() <= 1000, "long fields are not copied");
            continue;
        }
        Require(part.length >= 0 && part.data >= behind, "parts do not overlap");
        behind = part.data + part.length;
        Require(behind <= body.data() + length, "parts lie in the body");
    }
}
