// Search filters: any text, and any text as the value of one.
#include <memory>

#include "common/UStringX.h"
#include "fuzz/FuzzInput.h"
#include "kernel/OSConsole.h"
#include "ldap/BerCursor.h"
#include "ldap/ldap.h"
#include "ldap/ldap_filter.h"

namespace {

// Into a block of the measured size, so that a byte too many is seen.
std::string Encode(LDAPFilter_tx& filter) {
    const size_t size = filter.Length();
    const auto block = std::make_unique<unsigned char[]>(size);
    unsigned char* out = block.get();
    filter.BerEncode(out);
    Require(out == block.get() + size, "the encoding is as long as measured");
    return {reinterpret_cast<char*>(block.get()), size};
}

void Walk(BerCursor in) {
    constexpr uint8_t kConstructed = 0x20;
    while (!in.empty()) {
        BerHeader header;
        const BerCursor content = in.TakeElement(header);
        Require(in.ok(), "the encoding decodes");
        if ((header.tag & kConstructed) != 0) Walk(content);
    }
}

BerCursor CursorOver(const std::string& bytes) {
    return {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static OSConsole quiet;
    Console = &quiet;
    const std::string text = TextOf(data, size);
    LDAPFilter_tx filter(text.c_str());
    if (filter.valid != 0) Walk(CursorOver(Encode(filter)));

    UString value;
    value.SlashHex(text.c_str());
    LDAPFilter_tx escaped(("(a=" + std::string(value.c_str()) + "bc)").c_str());
    Require(escaped.valid != 0, "an escaped value fits any filter");
    const std::string encoded = Encode(escaped);
    BerCursor in = CursorOver(encoded);
    BerHeader header;
    BerCursor item = in.TakeElement(header);
    Require(header.tag == kLdapFilterEqual, "an escaped value makes an equality filter");
    const ASN1String name(item);
    const ASN1String sent(item);
    Require(item.ok() && text + "bc" == std::string(sent.str.get(), sent.length),
            "an escaped value is sent as it was");
    return 0;
}
