#include "tools/directoryd/Connection.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include "kernel/OSConsole.h"
#include "ldap/BerCursor.h"

namespace directoryd {

namespace {

constexpr unsigned short kPort = 4000;
constexpr unsigned char kSequence = 0x30;
constexpr size_t kLargestMessage = 65535;

// Drops the first `done` bytes once they are the greater part: what stays is moved, and so no byte
// is moved often.
void DropFront(std::string& bytes, size_t& done) {
    if (done < bytes.size() / 2) return;
    bytes.erase(0, done);
    done = 0;
}

}  // namespace

Listener::Listener(unsigned long ip) : Socket(TCP_SERVER, kPort, /*listen=*/true, ip) {
    // A client that has gone again must not make the others wait in accept().
    SetBlocking(false);
}

Connection::Connection(int fd, const sockaddr_in& remote)
    : Socket(TCP_SERVER, fd, &remote, static_cast<int>(sizeof remote)) {
    SetBlocking(false);
}

int Connection::DataIndication(OSBuf* b) {
    const std::unique_ptr<OSBuf> buffer(b);
    output_.append(buffer->data(), buffer->data() + buffer->size());
    return 0;
}

void Connection::FlushOutput() {
    while (outputSize() > 0) {
        const ssize_t sent = send(s, output_.data() + sent_, outputSize(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent < 0 && errno != EAGAIN) state = INVALID;
        if (sent < 0) break;
        sent_ += static_cast<size_t>(sent);
    }
    DropFront(output_, sent_);
}

void Connection::ReadInput() {
    if (const auto got = Socket::RecWait(0)) input_.append(got->data(), got->data() + got->size());
}

bool Connection::NextMessage(LDAPBytes& message) {
    const auto* const at = reinterpret_cast<const unsigned char*>(input_.data()) + taken_;
    const size_t left = input_.size() - taken_;
    if (left < 2) return false;
    size_t octets = ASN1Type::GetLenLen(at + 1);
    if (at[0] == kSequence && octets <= BerCursor::kMaxLengthOctets && left < 1 + octets)
        return false;

    BerCursor in(at, left);
    unsigned lengthOctets = 0;
    uint32_t length = 0;
    const size_t header = 1 + octets;
    if (at[0] != kSequence || !in.PeekLength(1, lengthOctets, length) ||
        length > kLargestMessage - header) {
        ConsoleReport("directoryd: %s sent what is no message, closed", RemoteIPText());
        state = INVALID;
        return false;
    }
    message.size = header + length;
    if (left < message.size) return false;
    message.data = std::make_unique<unsigned char[]>(message.size);
    std::memcpy(message.data.get(), at, message.size);
    taken_ += message.size;
    DropFront(input_, taken_);
    return true;
}

}  // namespace directoryd
