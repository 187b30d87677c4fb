#include "network/SecureSocket.h"

#include <doctest/doctest.h>

#include <functional>
#include <thread>

#include "unit/network/TestCertificates.h"
#include "unit/network/TestPeers.h"

namespace {

const TestCertificates& Certificates() {
    static const TestCertificates made;
    return made;
}

void UseKeys(const char* certificate, const char* key, const char* trusted) {
    const TestCertificates& made = Certificates();
    SecureSocket::SetKeys(made.Certificate(certificate).c_str(), made.Key(key).c_str(),
                          made.Certificate(trusted).c_str());
}

// A TLS connection with both ends ours; the server's end runs `serve` in a thread of its own.
class TlsPair {
  public:
    explicit TlsPair(std::function<void(SecureSocket&)> serve)
        : listener_(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK)),
          thread_([this, serve = std::move(serve)] {
              const auto accepted = listener_.Accept();
              if (accepted != nullptr) serve(static_cast<SecureSocket&>(*accepted));
          }),
          client(Socket::TCP_CLIENT, "127.0.0.1", listener_.LocalPort()) {}
    ~TlsPair() {
        client.Close();
        thread_.join();
    }

  private:
    SecureSocket listener_;
    std::thread thread_;

  public:
    SecureSocket client;
};

// Reads until something but "nothing yet" comes back.
std::unique_ptr<OSBuf> WaitFor(SecureSocket& socket) {
    std::unique_ptr<OSBuf> got;
    while (got == nullptr && socket.state == Socket::CONNECTED)
        got = socket.RecWait(1000);
    return got;
}

void Echo(SecureSocket& peer) {
    while (const auto got = WaitFor(peer)) {
        if (got->size() == 0) return;
        peer.DataIndication(new OSBuf(got->data(), got->size()));
    }
}

}  // namespace

TEST_CASE("both ends speak TLS, also in messages longer than a record") {
    Reports console;
    UseKeys("good", "good", "good");
    TlsPair pair(Echo);
    REQUIRE(pair.client.Secure());

    const std::string text(40000, 'x');
    CHECK(pair.client.DataIndication(Bytes(text)) == 0);
    std::string back(text.size(), '\0');
    CHECK(pair.client.RecWait(reinterpret_cast<unsigned char*>(back.data()), 40000) == 0);
    CHECK(back == text);
    CHECK(pair.client.RecWait(nullptr, 0) == 0);
    CHECK(console.Has("TLSSetup: setting cipher list to RSA+AESGCM:RSA+AES:"));
    CHECK(console.Has("ssl-info-callback - renegotiations "));
}

TEST_CASE("a record longer than one read is read to its end without waiting") {
    Reports console;
    UseKeys("good", "good", "good");
    TlsPair pair([](SecureSocket& peer) {
        peer.DataIndication(Bytes(std::string(5000, 'y')));
        while (WaitFor(peer) != nullptr && peer.state == Socket::CONNECTED) {
        }
    });
    const auto first = WaitFor(pair.client);
    REQUIRE(first != nullptr);
    size_t total = first->size();
    CHECK(total == 1600);
    for (int i = 0; i < 3; ++i) {
        const auto next = pair.client.RecWait(0);
        REQUIRE(next != nullptr);
        total += next->size();
    }
    CHECK(total == 5000);
    CHECK(pair.client.RecWait(0) == nullptr);
    CHECK(pair.client.state == Socket::CONNECTED);
}

TEST_CASE("untrusted and expired certificates are accepted") {
    Reports console;
    for (const char* name : {"good", "expired"}) {
        CAPTURE(name);
        UseKeys(name, name, "other");
        const TlsPair pair(Echo);
        CHECK(pair.client.Secure());
    }
}

TEST_CASE("a set-up without usable keys is refused, and nothing leaves unencrypted") {
    const std::string good = Certificates().Certificate("good");
    const std::string goodKey = Certificates().Key("good");
    const struct {
        const char* what;
        std::string certificate, key, trusted;
        int result;
    } cases[] = {
        {"no keys", "", "", "", -2},
        {"no such certificate", "/nonexistent.crt", goodKey, good, -2},
        {"no such key", good, "/nonexistent.key", good, -2},
        {"another's key", good, Certificates().Key("other"), good, -2},
        {"an encrypted key", Certificates().Certificate("locked"), Certificates().Key("locked"),
         good, -2},
        {"no such CA file", good, goodKey, "/nonexistent.crt", -3},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Reports console;
        SecureSocket::SetKeys(c.certificate.c_str(), c.key.c_str(), c.trusted.c_str());
        Socket listener(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
        const Socket plain(Socket::TCP_CLIENT, "127.0.0.1", listener.LocalPort());
        SecureSocket socket(Socket::TCP_CLIENT, plain.s, nullptr, 0);
        CHECK(socket.StartSSL(/*server=*/false) == c.result);
        CHECK_FALSE(socket.ssl_connected);
        CHECK(socket.ssl == nullptr);

        unsigned char byte;
        CHECK(socket.RecWait(&byte, 1) == -1);
        CHECK(socket.DataIndication(Bytes("password")) == 0);
        CHECK(socket.state == Socket::INVALID);
        CHECK(socket.RecWait(0) == nullptr);
        const auto accepted = listener.Accept();
        CHECK(accepted->RecWait(20) == nullptr);
        socket.s = -1;  // it is `plain`'s
    }
}

TEST_CASE("a handshake with a peer that speaks no TLS, or nothing, fails") {
    Reports console;
    UseKeys("good", "good", "good");
    Socket listener(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
    SUBCASE("it answers something else") {
        std::thread peer([&listener] {
            const auto accepted = listener.Accept();
            accepted->DataIndication(Bytes("220 welcome\r\n"));
            while (accepted->RecWait(5000) != nullptr) {
            }
        });
        const SecureSocket socket(Socket::TCP_CLIENT, "127.0.0.1", listener.LocalPort());
        peer.join();
        CHECK(socket.s == -1);
        CHECK_FALSE(socket.Secure());
        CHECK(console.Has("SecureSocket::StartSSL - SSL_get_error returned 1"));
        CHECK(console.Has("SSL error "));
    }
    SUBCASE("it is silent") {
        SecureSocket::handshake_wait_ms = 50;
        const SecureSocket socket(Socket::TCP_CLIENT, "127.0.0.1", listener.LocalPort());
        SecureSocket::handshake_wait_ms = 10000;
        CHECK(socket.s == -1);
    }
    SUBCASE("it connects to us") {
        SecureSocket secure(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
        Socket plain(Socket::TCP_CLIENT, "127.0.0.1", secure.LocalPort());
        plain.DataIndication(Bytes("GET / HTTP/1.0\r\n\r\n"));
        CHECK(secure.Accept() == nullptr);
    }
}

TEST_CASE("a clean close, a cut in mid record and a forged record are told apart") {
    Reports console;
    UseKeys("good", "good", "good");
    SUBCASE("clean close") {
        TlsPair pair([](SecureSocket& peer) { peer.Close(); });
        const auto got = WaitFor(pair.client);
        REQUIRE(got != nullptr);
        CHECK(got->size() == 0);
        CHECK(console.Has("SSL_read EOF"));
        CHECK(pair.client.state == Socket::INVALID);
    }
    // 256 bytes of application data are announced and 3 come.
    const auto cut = [](SecureSocket& peer) {
        send(peer.s, "\x17\x03\x03\x01\x00xyz", 8, MSG_NOSIGNAL);
    };
    SUBCASE("cut in mid record") {
        TlsPair pair([&cut](SecureSocket& peer) {
            cut(peer);
            shutdown(peer.s, SHUT_WR);
            while (peer.Socket::RecWait(5000) != nullptr) {
            }
            peer.state = Socket::INVALID;  // so that its Close says nothing more
        });
        CHECK(WaitFor(pair.client) == nullptr);
        CHECK(pair.client.state == Socket::INVALID);
        CHECK(console.Has("SSL_read WANT_READ"));
        CHECK(console.Has("SSL_read error SYSCALL - EOF"));
    }
    SUBCASE("cut during an exact read") {
        TlsPair pair([&cut](SecureSocket& peer) {
            cut(peer);
            peer.state = Socket::INVALID;
        });
        unsigned char got[10];
        CHECK(pair.client.RecWait(got, 10) == -1);
        CHECK(pair.client.state == Socket::INVALID);
    }
    SUBCASE("forged") {
        TlsPair pair([](SecureSocket& peer) {
            send(peer.s, "\x17\x03\x03\x00\x20_a_record_of_32_bytes_by_nobody_", 37, MSG_NOSIGNAL);
            while (peer.Socket::RecWait(5000) != nullptr) {
            }
        });
        const auto got = WaitFor(pair.client);
        REQUIRE(got != nullptr);
        CHECK(got->size() == 0);
        CHECK(console.Has("SSL_read error SSL"));
        CHECK(console.Has("SSL_read error - error:"));
        CHECK(pair.client.state == Socket::INVALID);
    }
}

TEST_CASE("a TLS write to a peer that has gone raises no signal") {
    Reports console;
    UseKeys("good", "good", "good");
    TlsPair pair([](SecureSocket& peer) {
        const linger abort = {1, 0};
        setsockopt(peer.s, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
        peer.Socket::Close();
    });
    for (int i = 0; i < 100 && pair.client.state == Socket::CONNECTED; ++i) {
        CHECK(pair.client.DataIndication(Bytes("x")) == 0);
        usleep(1000);
    }
    CHECK(pair.client.state == Socket::INVALID);
    CHECK(console.Has("SSL_write error"));
}
