// JSON bodies and chart descriptions: reading, expanding and asking.
#include <vector>

#include "cgiFramework/JsonObj.h"
#include "fuzz/FuzzInput.h"

namespace {

using Bytes = std::vector<char>;

// A block of just that size, so that a step behind the terminator is seen.
Bytes Terminated(const std::string& text) {
    Bytes bytes(text.c_str(), text.c_str() + text.size() + 1);
    bytes.shrink_to_fit();
    return bytes;
}

void Look(const JsonObj& node, const Bytes& text) {
    Require(node.end >= text.data() && node.end < text.data() + text.size() - 1,
            "values end in the text");
    char when[20];
    for (const JsonObj& child : node.values) {
        Require(child.parent == &node && child.level == node.level + 1,
                "children know their place");
        node.Find(child.name);
        node.String(child.name);
        node.GetDateTime(child.name, when);
        Look(child, text);
    }
}

void Ask(const JsonObj& node, const std::string& path) {
    UString result;
    try {
        node.Query(path.c_str(), result);
    } catch (const char*) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = TextOf(data, size);
    // What follows the first zero byte is expanded into, and asked of, what stands before it.
    const std::string more =
        text.size() < size ? TextOf(data + text.size() + 1, size - text.size() - 1) : "";
    Bytes first = Terminated(text);
    Bytes second = Terminated(more);
    JsonObj::reverse_arrays = size % 2 != 0;
    try {
        JsonObj top(first.data(), nullptr, 0);
        Look(top, first);
        Ask(top, more);
        top.Expand(second.data());
    } catch (const char*) {
    }
    return 0;
}
