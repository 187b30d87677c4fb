// SecureSocket.h: SecureSocket, TLS over a Socket, through the same operations.
#pragma once

#include <string>

#include "network/socketX.h"

struct ssl_ctx_st;
struct ssl_st;

// A protocol layer that works on a Socket works on this unchanged. Both sides need a certificate:
// call SetKeys first. Peer certificates are checked and the outcome is ignored, deliberately: the
// systems it talks to carry certificates of their own making.
//
// A descriptor that carries TLS is non-blocking. Without a connection (`ssl` null) a write sends
// nothing and a read fails: nothing ever leaves unencrypted.
class SecureSocket : public Socket {
  public:
    // Files in PEM form: certificate chain, private key (not encrypted), trusted CA certificates.
    static void SetKeys(const char* cert_chain_file, const char* key_file, const char* ca_file);

    // A listening socket: the connections that Accept answers carry TLS.
    SecureSocket(Type t, unsigned short port, bool listen, unsigned long local_ip = local_ipaddr);
    // Takes over an accepted descriptor; StartSSL(true) is the caller's.
    SecureSocket(Type t, int fd, const sockaddr_in* remote, int len);
    // Connects and runs the client's handshake; when that fails the socket is closed.
    SecureSocket(Type t, const char* host, unsigned short port);
    ~SecureSocket() override;

    // Sets TLS up and shakes hands, waiting at most `handshake_wait_ms` each time for the peer.
    // 0: done; -1: no TLS library; -2: no Diffie-Hellman group, or no usable certificate and key;
    // -3: no CA file; 1: the handshake failed.
    [[nodiscard]] int StartSSL(bool server);

    // Always answers 0; a failure shows in `state`.
    int DataIndication(OSBuf* b) override;
    // At most 1600 bytes at a time. Null: nothing for us yet, or (INVALID) the stream broke off. An
    // empty buffer: the peer has closed, or an error (INVALID).
    [[nodiscard]] std::unique_ptr<OSBuf> RecWait(int ms) override;
    // 0, or -1 and INVALID. It waits for as long as the peer keeps the connection open.
    [[nodiscard]] int RecWait(unsigned char* buf, int n) override;
    // Null also when the handshake fails.
    [[nodiscard]] std::unique_ptr<Socket> Accept() override;
    void Close() override;
    int Connect(unsigned long ip, unsigned short port) override;
    // TLS carries no datagrams: releases the buffer and answers 2.
    int SendTo(OSBuf* b, unsigned long ip, unsigned short port) override;
    bool Secure() const override { return ssl_connected; }

    ssl_ctx_st* ssl_ctx = nullptr;
    ssl_st* ssl = nullptr;
    // What the last read or write was waiting for.
    bool read_blocked = false;
    bool read_blocked_on_write = false;
    bool write_blocked_on_read = false;
    bool ssl_connected = false;  // the handshake succeeded

    static int handshake_wait_ms;  // 10 seconds

  private:
    enum ReadResult { kRead, kBlocked, kCutOff, kEnded };

    ReadResult ReadSome(unsigned char* to, size_t room, size_t& got);
    ReadResult SystemError(int result, int error, unsigned long queued);
    size_t WriteSome(const unsigned char* bytes, size_t size);
    int SetUp();
    int Handshake(bool server);
    void FreeSSL();
};
