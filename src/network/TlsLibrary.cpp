#include "network/TlsLibrary.h"

#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/params.h>
#include <openssl/rand.h>
#include <openssl/x509_vfy.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <ctime>
#include <memory>

#include "kernel/OSConsole.h"

namespace {

constexpr char kCiphers[] =
    "RSA+AESGCM:RSA+AES:ECDH+AESGCM:DH+AESGCM:ECDH+AES256:DH+AES256:ECDH+AES128:DH+AES:!aNULL:!MD5";

// Shared by all contexts, for the life of the process.
EVP_PKEY* diffieHellmanGroup = nullptr;
std::atomic<int> renegotiations = 0;

// Adds to the library's own random source and counts as no entropy: on a machine whose source is
// poor, two processes still start from different states.
void Seed() {
    utsname system = {};
    if (uname(&system) == 0) RAND_add(&system, sizeof system, 0.0);
    const struct {
        int error;
        uid_t real, effective;
        gid_t realGroup, effectiveGroup;
        pid_t process;
        time_t now;
    } facts = {errno, getuid(), geteuid(), getgid(), getegid(), getpid(), time(nullptr)};
    RAND_add(&facts, sizeof facts, 0.0);
}

// The 2048-bit group 14 of RFC 3526.
EVP_PKEY* MakeDiffieHellmanGroup() {
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> maker(
        EVP_PKEY_CTX_new_from_name(nullptr, "DH", nullptr), EVP_PKEY_CTX_free);
    char name[] = "modp_2048";
    OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, name, 0),
        OSSL_PARAM_construct_end()};
    EVP_PKEY* group = nullptr;
    if (maker == nullptr || EVP_PKEY_fromdata_init(maker.get()) <= 0 ||
        EVP_PKEY_fromdata(maker.get(), &group, EVP_PKEY_KEY_PARAMETERS, parameters) <= 0)
        return nullptr;
    return group;
}

// Without it an encrypted key would ask on the terminal.
int NoPassphrase(char*, int, int, void*) {
    return 0;
}

// Runs the usual check of the chain, whose outcome counts only when it could not be run at all.
int VerifyAndAccept(X509_STORE_CTX* chain, void*) {
    const int result = X509_verify_cert(chain);
    return result < 0 ? result : 1;
}

void WatchHandshake(const SSL* ssl, int where, int) {
    if ((where & SSL_CB_HANDSHAKE_START) != 0)
        ConsoleReport("ssl-info-callback - renegotiations %d", ++renegotiations);
    // The library hands out what we may change as constant.
    if ((where & SSL_CB_HANDSHAKE_DONE) != 0)
        SSL_set_options(const_cast<SSL*>(ssl), SSL_OP_NO_RENEGOTIATION);
}

int StartOnce() {
    if (OPENSSL_init_ssl(OPENSSL_INIT_LOAD_SSL_STRINGS | OPENSSL_INIT_LOAD_CRYPTO_STRINGS,
                         nullptr) != 1)
        return -1;
    Seed();
    diffieHellmanGroup = MakeDiffieHellmanGroup();
    return diffieHellmanGroup != nullptr ? 0 : -2;
}

bool SetDiffieHellman(SSL_CTX* context) {
    SSL_CTX_set_options(context, SSL_OP_SINGLE_DH_USE);
    EVP_PKEY_up_ref(diffieHellmanGroup);
    if (SSL_CTX_set0_tmp_dh_pkey(context, diffieHellmanGroup) == 1) return true;
    EVP_PKEY_free(diffieHellmanGroup);
    return false;
}

}  // namespace

int StartTlsLibrary() {
    static const int result = StartOnce();
    return result;
}

SSL_CTX* NewTlsContext() {
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> made(SSL_CTX_new(TLS_method()), SSL_CTX_free);
    SSL_CTX* const context = made.get();
    if (context == nullptr) return nullptr;

    SSL_CTX_set_default_passwd_cb(context, NoPassphrase);
    SSL_CTX_set_mode(context, SSL_MODE_ENABLE_PARTIAL_WRITE);
    // Else a read goes on waiting inside the library, beyond the time that its caller has.
    SSL_CTX_clear_mode(context, SSL_MODE_AUTO_RETRY);
    ConsoleReport("TLSSetup: setting cipher list to %s", kCiphers);
    if (SSL_CTX_set_cipher_list(context, kCiphers) != 1) return nullptr;
    SSL_CTX_set_options(context, SSL_OP_NO_SSLv2 | SSL_OP_NO_SSLv3 |
                                     SSL_OP_CIPHER_SERVER_PREFERENCE |
                                     SSL_OP_NO_SESSION_RESUMPTION_ON_RENEGOTIATION);
    SSL_CTX_set_info_callback(context, WatchHandshake);
    SSL_CTX_set_verify(context, SSL_VERIFY_NONE, nullptr);
    SSL_CTX_set_cert_verify_callback(context, VerifyAndAccept, nullptr);

    static std::atomic<uint32_t> contexts = 0;
    const uint32_t number = ++contexts;
    SSL_CTX_set_session_id_context(context, reinterpret_cast<const unsigned char*>(&number),
                                   sizeof number);
    return SetDiffieHellman(context) ? made.release() : nullptr;
}

TlsCall::TlsCall() {
    ERR_clear_error();
    sigset_t pipe, pending;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    sigemptyset(&pending);
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &pipe, &before_);
}

TlsCall::~TlsCall() {
    const int savedErrno = errno;
    if (!wasPending_) {
        sigset_t pipe;
        sigemptyset(&pipe);
        sigaddset(&pipe, SIGPIPE);
        const timespec atOnce = {0, 0};
        while (sigtimedwait(&pipe, nullptr, &atOnce) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    errno = savedErrno;
}

bool IsUnexpectedEof(unsigned long error) {
    return ERR_GET_LIB(error) == ERR_LIB_SSL &&
           ERR_GET_REASON(error) == SSL_R_UNEXPECTED_EOF_WHILE_READING;
}

const char* TlsErrorText(unsigned long error) {
    thread_local char text[256];
    ERR_error_string_n(error, text, sizeof text);
    return text;
}
