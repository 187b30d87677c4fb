// JSON texts read into page items: what is rendered from them reads back as the same document.
#include <memory>

#include "cgiFramework/JSONPage.h"
#include "fuzz/FuzzInput.h"

namespace {

// Null when the text is refused.
std::unique_ptr<JSONObject> Read(const UString& text) {
    try {
        return std::make_unique<JSONObject>(text);
    } catch (const char*) {
        return nullptr;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static WebContext ctx("/nowhere", nullptr);
    const std::string text = TextOf(data, size);
    const JSONValue value(text.c_str(), /*raw=*/false);
    Require(value.value.GetLength() <= static_cast<int>(6 * text.size()), "escapes are short");

    const std::unique_ptr<JSONObject> object = Read(text.c_str());
    if (object == nullptr) return 0;
    const UString rendered = object->toString(ctx);
    const std::unique_ptr<JSONObject> again = Read(rendered);
    Require(again != nullptr && again->toString(ctx) == rendered, "a rendered document reads back");
    const std::unique_ptr<JSONItem> twin(object->copy());
    Require(twin->toString(ctx) == rendered, "a copy renders alike");
    return 0;
}
