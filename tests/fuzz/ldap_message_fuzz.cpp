// A stream of directory messages from a socket, each read to its last field.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "fuzz/FuzzInput.h"
#include "kernel/OSConsole.h"
#include "ldap/ldap_requests_rx.h"
#include "network/socketX.h"

namespace {

// What a socket pair takes at once, so that writing never waits for the reader.
constexpr size_t kMaxStream = 100000;

void Touch(const std::unique_ptr<ASN1String>& text) {
    Require(text != nullptr && text->str != nullptr, "no text is null");
    Require(text->str[text->length] == '\0', "texts end in a zero byte");
}

void Touch(const std::vector<std::unique_ptr<ASN1String>>& texts) {
    for (const auto& text : texts)
        Touch(text);
}

void Look(LDAPMessage_rx& message) {
    if (auto* result = dynamic_cast<LDAPResult_rx*>(&message)) {
        Touch(result->matchedDN);
        Touch(result->errorMessage);
    } else if (auto* entry = dynamic_cast<LDAPSearchRes_rx*>(&message)) {
        Touch(entry->objectName);
        char* name = nullptr;
        char* value = nullptr;
        size_t length = 0;
        while (entry->NextAttribute(name, value) != 0)
            length += std::string(name).size() + std::string(value).size();
        Require(length < 65536, "attributes are no longer than a message");
    } else if (auto* bind = dynamic_cast<LDAPBindReq_rx*>(&message)) {
        Touch(bind->name);
        Touch(bind->cred);
    } else if (auto* modify = dynamic_cast<LDAPModifyReq_rx*>(&message)) {
        Touch(modify->object);
        for (const auto& change : modify->modifications) {
            Touch(change->attr_name);
            Touch(change->values);
        }
    } else if (auto* add = dynamic_cast<LDAPAddReq_rx*>(&message)) {
        Touch(add->entry);
        for (const auto& attribute : add->attributes) {
            Touch(attribute->attr_name);
            Touch(attribute->values);
        }
    } else if (auto* remove = dynamic_cast<LDAPDelReq_rx*>(&message)) {
        Touch(remove->entry);
    } else if (auto* rename = dynamic_cast<LDAPModRDNReq_rx*>(&message)) {
        Touch(rename->entry);
        Touch(rename->newrdn);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static OSConsole quiet;
    Console = &quiet;
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return 0;
    const sockaddr_in peer = {};
    Socket socket(Socket::TCP_CLIENT, ends[0], &peer, int{sizeof peer});
    size = std::min(size, kMaxStream);
    Require(write(ends[1], data, size) == static_cast<ssize_t>(size), "the stream is written");
    close(ends[1]);

    for (int err = 0; err == 0;) {
        const std::unique_ptr<LDAPMessage_rx> message(LDAPMessage_rx::GetMsg(&socket, &err));
        Require(message == nullptr || err == 0, "an error gives no message");
        if (message != nullptr) Look(*message);
    }
    return 0;
}
