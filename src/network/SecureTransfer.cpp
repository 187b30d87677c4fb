// How a SecureSocket reads and writes.
#include <openssl/err.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "kernel/OSConsole.h"
#include "network/SecureSocket.h"
#include "network/TlsLibrary.h"

namespace {

constexpr size_t kReadSize = 1600;
constexpr int kSendMs = 5000;

}  // namespace

int SecureSocket::DataIndication(OSBuf* b) {
    const std::unique_ptr<OSBuf> buffer(b);
    if (buffer == nullptr) return 0;
    for (size_t done = 0; done < buffer->size();) {
        const size_t sent =
            ssl != nullptr ? WriteSome(buffer->data() + done, buffer->size() - done) : 0;
        if (sent == 0) {
            state = INVALID;
            break;
        }
        done += sent;
    }
    return 0;
}

// Writes what goes into one record, waiting for the peer a bounded time. 0: nothing was written.
size_t SecureSocket::WriteSome(const unsigned char* bytes, size_t size) {
    while (true) {
        const TlsCall call;
        size_t sent = 0;
        const int result = SSL_write_ex(ssl, bytes, size, &sent);
        if (result == 1) {
            write_blocked_on_read = false;
            return sent;
        }
        switch (SSL_get_error(ssl, result)) {
            case SSL_ERROR_WANT_READ:
                ConsoleReport("SSL_write WANT_READ");
                write_blocked_on_read = true;
                if (WaitInput(kSendMs)) continue;
                break;
            case SSL_ERROR_WANT_WRITE:
                ConsoleReport("SSL_write WANT_WRITE");
                if (WaitWritable(kSendMs)) continue;
                break;
            default:
                break;
        }
        ConsoleReport("SSL_write error");
        while (const unsigned long error = ERR_get_error())
            ConsoleReport("SSL_write error %x (%s)", static_cast<unsigned int>(error),
                          TlsErrorText(error));
        return 0;
    }
}

std::unique_ptr<OSBuf> SecureSocket::RecWait(int ms) {
    if (ssl == nullptr) {
        state = INVALID;
        return nullptr;
    }
    // What is decrypted already would never wake the wait.
    if (SSL_pending(ssl) == 0 && WaitReadable("SecureSocket", ms) != kReady) return nullptr;

    auto buffer = std::make_unique<OSBuf>(kReadSize);
    size_t got = 0;
    const ReadResult result = ReadSome(buffer->data(), buffer->capacity(), got);
    if (result == kBlocked || result == kCutOff) return nullptr;
    buffer->UseFront(got);
    return buffer;
}

int SecureSocket::RecWait(unsigned char* buf, int n) {
    if (n <= 0) return 0;
    if (ssl == nullptr) {
        state = INVALID;
        return -1;
    }
    const auto wanted = static_cast<size_t>(n);
    for (size_t have = 0; have < wanted;) {
        size_t got = 0;
        switch (ReadSome(buf + have, wanted - have, got)) {
            case kRead:
                have += got;
                break;
            case kBlocked:
                if (read_blocked_on_write ? WaitWritable(-1) : WaitInput(-1)) break;
                state = INVALID;
                return -1;
            case kCutOff:
            case kEnded:
                return -1;
        }
    }
    return 0;
}

// One read. Everything but kRead is reported; kCutOff and kEnded leave INVALID.
SecureSocket::ReadResult SecureSocket::ReadSome(unsigned char* to, size_t room, size_t& got) {
    const TlsCall call;
    got = 0;
    read_blocked = read_blocked_on_write = false;
    errno = 0;
    const int result =
        SSL_read(ssl, to, static_cast<int>(std::min(room, static_cast<size_t>(INT_MAX))));
    if (result > 0) {
        got = static_cast<size_t>(result);
        return kRead;
    }

    const int savedErrno = errno;
    const int outcome = SSL_get_error(ssl, result);
    const unsigned long error = ERR_get_error();
    switch (outcome) {
        case SSL_ERROR_WANT_READ:
            ConsoleReport("SSL_read WANT_READ");
            read_blocked = true;
            return kBlocked;
        case SSL_ERROR_WANT_WRITE:
            ConsoleReport("SSL_read WANT_WRITE");
            read_blocked_on_write = true;
            return kBlocked;
        case SSL_ERROR_SYSCALL:
            return SystemError(result, savedErrno, error);
        case SSL_ERROR_ZERO_RETURN:
            ConsoleReport("SSL_read EOF");
            break;
        case SSL_ERROR_SSL:
            if (IsUnexpectedEof(error)) return SystemError(result, 0, 0);
            ConsoleReport("SSL_read error SSL");
            break;
        case SSL_ERROR_WANT_X509_LOOKUP:
            ConsoleReport("SSL_read error WANT_X509_LOOKUP");
            break;
        case SSL_ERROR_WANT_CONNECT:
            ConsoleReport("SSL_read error WANT_CONNECT");
            break;
        case SSL_ERROR_WANT_ACCEPT:
            ConsoleReport("SSL_read error WANT_ACCEPT");
            break;
        default:
            ConsoleReport("SSL_read error");
            break;
    }
    if (error != 0) ConsoleReport("SSL_read error - %s", TlsErrorText(error));
    state = INVALID;
    return kEnded;
}

// A read that failed below the TLS library: with its queued error, at the end of the stream without
// the peer's close, or in the system.
SecureSocket::ReadResult SecureSocket::SystemError(int result, int error, unsigned long queued) {
    if (queued == 0 && error == EAGAIN)
        read_blocked = true;
    else
        state = INVALID;
    if (queued != 0) {
        ConsoleReport("SSL_read error - ret %d, err '%s'", result, TlsErrorText(queued));
        return kEnded;
    }
    if (error == 0) {
        ConsoleReport("SSL_read error SYSCALL - EOF");
        return kCutOff;
    }
    ConsoleReport("SSL_read error SYSCALL - ret %d, errno %d", result, error);
    return kEnded;
}
