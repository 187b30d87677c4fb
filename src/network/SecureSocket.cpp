#include "network/SecureSocket.h"

#include <openssl/err.h>

#include <array>

#include "kernel/OSConsole.h"
#include "network/TlsLibrary.h"

int SecureSocket::handshake_wait_ms = 10000;

namespace {

struct KeyFiles {
    std::string certificateChain;
    std::string privateKey;
    std::string trusted;

    bool Complete() const {
        return !certificateChain.empty() && !privateKey.empty() && !trusted.empty();
    }
};

// Tried in order. SetKeys fills the first.
std::array<KeyFiles, 3> keyTable;

std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}

bool LoadKeys(SSL_CTX* context, const KeyFiles& files) {
    const TlsCall call;
    if (SSL_CTX_use_certificate_chain_file(context, files.certificateChain.c_str()) != 1) {
        ConsoleReport("SecureSocket::StartSSL - SSL_CTX_use_certificate_chain_file error for %s",
                      files.certificateChain.c_str());
        return false;
    }
    // A key that does not belong to the certificate fails here too.
    if (SSL_CTX_use_PrivateKey_file(context, files.privateKey.c_str(), SSL_FILETYPE_PEM) != 1) {
        ConsoleReport("SecureSocket::StartSSL - SSL_CTX_use_PrivateKey_file error for %s",
                      files.privateKey.c_str());
        return false;
    }
    return SSL_CTX_check_private_key(context) == 1;
}

const KeyFiles* LoadFirstKeys(SSL_CTX* context) {
    for (const KeyFiles& files : keyTable)
        if (files.Complete() && LoadKeys(context, files)) return &files;
    return nullptr;
}

void ReportQueuedErrors() {
    while (const unsigned long error = ERR_get_error())
        ConsoleReport("SSL error %x (%s)", static_cast<unsigned int>(error), TlsErrorText(error));
}

}  // namespace

void SecureSocket::SetKeys(const char* cert_chain_file, const char* key_file, const char* ca_file) {
    keyTable[0] = {TextOf(cert_chain_file), TextOf(key_file), TextOf(ca_file)};
}

SecureSocket::SecureSocket(Type t, unsigned short port, bool listen, unsigned long local_ip)
    : Socket(t, port, listen, local_ip) {}

SecureSocket::SecureSocket(Type t, int fd, const sockaddr_in* remote, int len)
    : Socket(t, fd, remote, len) {}

SecureSocket::SecureSocket(Type t, const char* host, unsigned short port) : Socket(t, host, port) {
    if (state == CONNECTED && StartSSL(/*server=*/false) != 0) SecureSocket::Close();
}

SecureSocket::~SecureSocket() {
    SecureSocket::Close();
}

int SecureSocket::StartSSL(bool server) {
    FreeSSL();
    int result = StartTlsLibrary();
    if (result == 0) result = SetUp();
    if (result == 0) result = Handshake(server);
    if (result != 0) FreeSSL();
    return result;
}

int SecureSocket::SetUp() {
    ssl_ctx = NewTlsContext();
    if (ssl_ctx == nullptr) return -1;
    SSL_CTX_set_app_data(ssl_ctx, this);

    const KeyFiles* const files = LoadFirstKeys(ssl_ctx);
    if (files == nullptr) return -2;
    if (SSL_CTX_load_verify_locations(ssl_ctx, files->trusted.c_str(), nullptr) != 1) {
        ConsoleReport("SecureSocket::StartSSL - SSL_CTX_load_verify_locations error for %s",
                      files->trusted.c_str());
        return -3;
    }
    ssl = SSL_new(ssl_ctx);
    BIO* const descriptor = BIO_new_socket(s, BIO_NOCLOSE);
    if (ssl == nullptr || descriptor == nullptr) {
        BIO_free(descriptor);
        return -1;
    }
    SSL_set_bio(ssl, descriptor, descriptor);  // takes it over
    return 0;
}

int SecureSocket::Handshake(bool server) {
    if (!SetBlocking(false)) return 1;
    bool wantsWrite = true;
    while (wantsWrite ? WaitWritable(handshake_wait_ms) : WaitInput(handshake_wait_ms)) {
        const TlsCall call;
        const int result = server ? SSL_accept(ssl) : SSL_connect(ssl);
        ConsoleReport(server ? "SecureSocket::StartSSL - SSL_accept returned %d"
                             : "SecureSocket::StartSSL - SSL_connect returned %d",
                      result);
        if (result > 0) {
            ssl_connected = true;
            return 0;
        }
        const int error = SSL_get_error(ssl, result);
        ConsoleReport("SecureSocket::StartSSL - SSL_get_error returned %d", error);
        if (error != SSL_ERROR_NONE && error != SSL_ERROR_WANT_READ &&
            error != SSL_ERROR_WANT_WRITE && error != SSL_ERROR_WANT_CONNECT) {
            ReportQueuedErrors();
            break;
        }
        wantsWrite = error != SSL_ERROR_WANT_READ;
    }
    state = INVALID;
    return 1;
}

std::unique_ptr<Socket> SecureSocket::Accept() {
    sockaddr_in remote = {};
    const int fd = AcceptDescriptor(remote);
    if (fd < 0) return nullptr;
    auto accepted =
        std::make_unique<SecureSocket>(type, fd, &remote, static_cast<int>(sizeof remote));
    if (accepted->StartSSL(/*server=*/true) != 0) return nullptr;
    return accepted;
}

int SecureSocket::Connect(unsigned long ip, unsigned short port) {
    const int result = Socket::Connect(ip, port);
    if (result != 0) return result;
    if (StartSSL(/*server=*/false) == 0) return 0;
    Close();
    return 2;
}

int SecureSocket::SendTo(OSBuf* b, unsigned long, unsigned short) {
    const std::unique_ptr<OSBuf> released(b);
    return 2;
}

void SecureSocket::Close() {
    // Tells the peer that this is the end and no cut. After a failure there is nothing to tell.
    if (ssl_connected && state == CONNECTED) {
        const TlsCall call;
        SSL_shutdown(ssl);
    }
    FreeSSL();
    Socket::Close();
}

void SecureSocket::FreeSSL() {
    SSL_free(ssl);
    SSL_CTX_free(ssl_ctx);
    ssl = nullptr;
    ssl_ctx = nullptr;
    ssl_connected = read_blocked = read_blocked_on_write = write_blocked_on_read = false;
}
