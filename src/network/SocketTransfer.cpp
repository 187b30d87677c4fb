// How a Socket reads and writes.
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "kernel/OSConsole.h"
#include "network/socketX.h"

namespace {

constexpr size_t kAheadSize = 16384;

}  // namespace

int Socket::DataIndication(OSBuf* b) {
    const std::unique_ptr<OSBuf> buffer(b);
    if (buffer == nullptr) return 0;
    ssize_t sent;
    do {
        sent = send(s, buffer->data(), buffer->size(), MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    if (sent == static_cast<ssize_t>(buffer->size())) return 0;

    // After half a message nothing that follows would be understood.
    const int error = sent < 0 ? errno : ETIMEDOUT;
    ConsoleReport("Socket::DataIndication: send() error %d to %08x:%u from %08x:%u", error,
                  RemoteIP_h(), RemotePort(), LocalIP_h(), LocalPort());
    state = INVALID;
    return 2;
}

int Socket::SendTo(OSBuf* b, unsigned long ip, unsigned short port) {
    const std::unique_ptr<OSBuf> buffer(b);
    if (buffer == nullptr) return 2;
    sockaddr_in to = {};
    to.sin_family = AF_INET;
    to.sin_port = htons(port);
    to.sin_addr.s_addr = static_cast<in_addr_t>(ip);
    ssize_t sent;
    do {
        sent = sendto(s, buffer->data(), buffer->size(), MSG_NOSIGNAL,
                      reinterpret_cast<const sockaddr*>(&to), sizeof to);
    } while (sent < 0 && errno == EINTR);
    if (sent == static_cast<ssize_t>(buffer->size())) return 0;
    ConsoleReport("Socket::SendTo: sendto() error %d to %08x:%u", errno, ntohl(to.sin_addr.s_addr),
                  port);
    return 2;
}

int Socket::Queue(OSBuf* b) {
    if (b != nullptr) queue.Append(b);
    return 0;
}

int Socket::FlushQueue(bool log) {
    if (log)
        ConsoleReport("Socket::FlushQueue() size=%d to %s", static_cast<int>(queue.size()),
                      RemoteIPText());
    int result = 0;
    while (result == 0 && !queue.empty())
        result = DataIndication(queue.Take().release());
    queue.Clear();
    return result;
}

// What can be received at once; -1, and INVALID, when that cannot be told or the peer has closed.
int Socket::PendingBytes() {
    int pending = 0;
    if (ioctl(s, FIONREAD, &pending) < 0)
        ConsoleReport("Socket::RecWait: ioctlsocket(FIONREAD) %d", errno);
    else if (pending > 0 || type == UDP)  // a datagram may be empty
        return pending;
    state = INVALID;
    return -1;
}

// One receive. What it answers is below 0, and the state INVALID, after an error.
ssize_t Socket::Receive(void* to, size_t room) {
    ssize_t got;
    do {
        got = recv(s, to, room, 0);
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        ConsoleReport("Socket::RecWait: recv %d", errno);
        state = INVALID;
    }
    return got;
}

std::unique_ptr<OSBuf> Socket::RecWait(int ms) {
    if (aheadFrom_ < aheadTo_) {
        auto left = std::make_unique<OSBuf>(ahead_.get() + aheadFrom_, aheadTo_ - aheadFrom_);
        aheadFrom_ = aheadTo_;
        return left;
    }
    if (WaitReadable("Socket", ms) != kReady) return nullptr;
    const int pending = PendingBytes();
    if (pending < 0) return nullptr;

    auto buffer = std::make_unique<OSBuf>(static_cast<size_t>(pending));
    const ssize_t got = Receive(buffer->data(), buffer->capacity());
    if (got < 0) return nullptr;
    if (got < pending)
        ConsoleReport("Socket::RecWait: expected %d, got %d", pending, static_cast<int>(got));
    buffer->UseFront(static_cast<size_t>(got));
    return buffer;
}

int Socket::RecWait(unsigned char* buf, int n) {
    const auto wanted = static_cast<size_t>(std::max(n, 0));
    for (size_t have = TakeAhead(buf, wanted); have < wanted;) {
        switch (WaitReadable("Socket", read_wait_ms)) {
            case kReady:
                break;
            case kTimedOut:
                return 3;
            case kException:
                return 1;
            case kNotReadable:
                return 2;
            case kFailed:
                return -1;
        }
        const ssize_t got = ReceivePart(buf + have, wanted - have);
        if (got == 0) state = INVALID;
        if (got <= 0) return -1;
        have += static_cast<size_t>(got);
    }
    return 0;
}

// One receive of at most `room` bytes. A stream gives what it has, and what is more than `room`
// waits here: small reads, as of message heads, then cost no system call.
ssize_t Socket::ReceivePart(unsigned char* to, size_t room) {
    if (type == UDP || room >= kAheadSize) return Receive(to, room);
    if (ahead_ == nullptr) ahead_ = std::make_unique<unsigned char[]>(kAheadSize);
    const ssize_t got = Receive(ahead_.get(), kAheadSize);
    if (got <= 0) return got;
    aheadFrom_ = 0;
    aheadTo_ = static_cast<size_t>(got);
    return static_cast<ssize_t>(TakeAhead(to, room));
}

size_t Socket::TakeAhead(unsigned char* to, size_t room) {
    const size_t taken = std::min(room, aheadTo_ - aheadFrom_);
    if (taken > 0) std::memcpy(to, ahead_.get() + aheadFrom_, taken);
    aheadFrom_ += taken;
    return taken;
}
