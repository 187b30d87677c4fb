// TlsLibrary.h: what the sockets need of the TLS library as a whole. For this folder only.
#pragma once

#include <openssl/ssl.h>

#include <csignal>

// Starts the library at the first call. 0; -1: it does not start; -2: no Diffie-Hellman group.
int StartTlsLibrary();

// A context with the house's protocol, ciphers, key exchange and verification, but no certificate;
// null when the library refuses. The caller frees it.
SSL_CTX* NewTlsContext();

// Stands around each call of the library that may touch the network: no error of an earlier call is
// left in the queue, and a write to a peer that has gone raises no SIGPIPE. errno is kept.
class TlsCall {
  public:
    TlsCall();
    ~TlsCall();
    TlsCall(const TlsCall&) = delete;
    TlsCall& operator=(const TlsCall&) = delete;

  private:
    sigset_t before_;
    bool wasPending_;
};

// True for the error of a stream that ended without the peer's close: its queue entry is `error`.
bool IsUnexpectedEof(unsigned long error);
// The library's text for an error; it lives until the thread asks for the next.
const char* TlsErrorText(unsigned long error);
