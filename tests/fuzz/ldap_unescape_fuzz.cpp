// Backslash escapes of the directory: broken ones, and the way there and back.
#include <memory>

#include "common/UStringX.h"
#include "fuzz/FuzzInput.h"
#include "kernel/OSConsole.h"
#include "ldap/asn1ber.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static OSConsole quiet;
    Console = &quiet;
    const std::string text = TextOf(data, size);
    // A block of just that size, so that a step behind the terminator is seen.
    const auto exact = std::make_unique<char[]>(text.size() + 1);
    text.copy(exact.get(), text.size());
    const ASN1String decoded(exact.get(), /*unescape=*/1);
    Require(decoded.length <= text.size(), "unescaping makes no text longer");

    UString escaped;
    escaped.SlashHex(text.c_str());
    const ASN1String back(escaped.c_str(), /*unescape=*/1);
    Require(text == std::string(back.str.get(), back.length), "an escaped text comes back");
    return 0;
}
