#include "network/socketX.h"

#include <doctest/doctest.h>
#include <pthread.h>

#include <csignal>
#include <thread>

#include "unit/network/TestPeers.h"

namespace {

// Short waits for tests that run into them.
struct ShortWaits {
    ShortWaits() { Socket::read_wait_ms = 50; }
    ~ShortWaits() { Socket::read_wait_ms = 10000; }
};

void IgnoreSignal(int) {}

}  // namespace

TEST_CASE("OSBuf uses the front or the back of its room, never more") {
    OSBuf buffer(8);
    CHECK(buffer.size() == 0);
    buffer.UseBack(3)[0] = 'x';
    CHECK(buffer.size() == 3);
    CHECK(buffer.UseFront(99)[5] == 'x');
    CHECK(buffer.size() == 8);
    CHECK(buffer.UseBack(99) == buffer.data());
    CHECK(TextOf(OSBuf("ab", 2)) == "ab");
}

TEST_CASE("a client and an accepted connection exchange bytes and know their addresses") {
    const size_t before = Socket::socket_list.size();
    {
        Pair pair;
        REQUIRE(pair.client->state == Socket::CONNECTED);
        REQUIRE(pair.server != nullptr);
        REQUIRE(pair.server->state == Socket::CONNECTED);
        CHECK(Socket::socket_list.size() == before + 2);
        CHECK(pair.client->LocalPort() == pair.server->RemotePort());
        CHECK(pair.server->LocalPort() == pair.client->RemotePort());
        CHECK(pair.client->RemoteIP_h() == INADDR_LOOPBACK);
        CHECK(pair.client->LocalIP_n() == htonl(INADDR_LOOPBACK));
        CHECK(std::string(pair.server->RemoteIPText()) == "127.0.0.1");
        CHECK(std::string(pair.client->RemoteHostname()) == "127.0.0.1");
        CHECK_FALSE(pair.client->Secure());

        CHECK(pair.client->DataIndication(Bytes("one")) == 0);
        CHECK(pair.client->DataIndication(Bytes("two")) == 0);
        unsigned char got[6];
        CHECK(pair.server->RecWait(got, 6) == 0);
        CHECK(std::string(got, got + 6) == "onetwo");

        CHECK(pair.server->DataIndication(Bytes("answer")) == 0);
        const auto answer = pair.client->RecWait(5000);
        REQUIRE(answer != nullptr);
        CHECK(TextOf(*answer) == "answer");
    }
    CHECK(Socket::socket_list.size() == before);
}

TEST_CASE("a connect that fails says where and leaves no descriptor") {
    Reports console;
    SUBCASE("nothing listens") {
        unsigned short freePort;
        {
            const Socket taken(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
            freePort = taken.LocalPort();
        }
        const Socket socket(Socket::TCP_CLIENT, "127.0.0.1", freePort);
        CHECK(socket.s == -1);
        CHECK(socket.state == Socket::INVALID);
        CHECK(console.Has("Socket::Socket() connect() error 111 to 7f000001:"));
        CHECK(console.Has(" from 00000000:"));
    }
    SUBCASE("nobody answers") {
        // A listener whose queue is full drops what comes; filling it takes connects of our own.
        Socket listener(Socket::TCP_SERVER, 0, false, htonl(INADDR_LOOPBACK));
        REQUIRE(::listen(listener.s, 0) == 0);
        const Socket fills(Socket::TCP_CLIENT, "127.0.0.1", listener.LocalPort());
        const Socket socket(Socket::TCP_CLIENT, "127.0.0.1", listener.LocalPort());
        CHECK(socket.s == -1);
        CHECK(console.Has("connect() error 110 to 7f000001:"));
    }
    SUBCASE("names that are none") {
        for (const char* host : {"", "12monkeys", "127.1", "no-such-host.invalid"}) {
            CAPTURE(host);
            const Socket socket(Socket::TCP_CLIENT, host, 4000);
            CHECK(socket.s == -1);
            CHECK(console.Has((std::string("Socket: couldn't resolve host ") + host).c_str()));
        }
        const Socket socket(Socket::TCP_CLIENT, nullptr, 4000);
        CHECK(socket.s == -1);
    }
    SUBCASE("the port to listen on is taken") {
        const Socket first(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
        const Socket second(Socket::TCP_SERVER, first.LocalPort(), true, htonl(INADDR_LOOPBACK));
        CHECK(second.s == -1);
        CHECK(console.Has("Socket: bind() error 98 for port "));
    }
}

TEST_CASE("a host name is looked up and kept") {
    Socket listener(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
    const Socket socket(Socket::TCP_CLIENT, "localhost", listener.LocalPort());
    REQUIRE(socket.state == Socket::CONNECTED);
    CHECK(std::string(socket.RemoteHostname()) == "localhost");
    CHECK(std::string(socket.RemoteIPText()) == "127.0.0.1");
}

TEST_CASE("an existing socket connects later") {
    Socket listener(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
    Socket socket(Socket::TCP_CLIENT, 0, false, htonl(INADDR_LOOPBACK));
    CHECK(socket.state == Socket::READY);
    CHECK(socket.Connect(htonl(INADDR_LOOPBACK), listener.LocalPort()) == 0);
    CHECK(socket.state == Socket::CONNECTED);
    socket.Close();
    Reports console;
    CHECK(socket.Connect(htonl(INADDR_LOOPBACK), listener.LocalPort()) == 2);
    CHECK(socket.Accept() == nullptr);
}

TEST_CASE("an exact read tells why it did not get all") {
    const ShortWaits shortWaits;
    Reports console;
    Pair pair;
    unsigned char got[6];
    CHECK(pair.server->RecWait(got, 0) == 0);
    pair.client->DataIndication(Bytes("four"));

    SUBCASE("the rest never comes") {
        CHECK(pair.server->RecWait(got, 6) == 3);
        CHECK(pair.server->state == Socket::CONNECTED);
    }
    SUBCASE("the peer closes") {
        pair.client->Close();
        CHECK(pair.server->RecWait(got, 6) == -1);
        CHECK(pair.server->state == Socket::INVALID);
    }
    SUBCASE("urgent data") {
        REQUIRE(send(pair.client->s, "!", 1, MSG_OOB) == 1);
        CHECK(pair.server->RecWait(got, 6) == 1);
        CHECK(pair.server->state == Socket::INVALID);
        CHECK(console.Has("Socket::RecWait: exception condition on socket"));
    }
    SUBCASE("we have closed") {
        pair.server->Close();
        CHECK(pair.server->RecWait(got, 6) == -1);
        CHECK(pair.server->RecWait(0) == nullptr);
        CHECK(console.Has("Socket::RecWait: select() 9"));
    }
}

TEST_CASE("an exact read leaves what came beyond it to the next read of either kind") {
    Reports console;
    Pair pair;
    unsigned char got[3];
    // One send: all of it is there when the first read wakes.
    pair.client->DataIndication(Bytes("onetworest"));
    pair.client->Close();
    CHECK(pair.server->RecWait(got, 3) == 0);
    CHECK(std::string(got, got + 3) == "one");
    CHECK(pair.server->state == Socket::CONNECTED);

    SUBCASE("the peer's close shows behind the last byte") {
        CHECK(pair.server->RecWait(got, 3) == 0);
        CHECK(std::string(got, got + 3) == "two");
        const auto rest = pair.server->RecWait(0);
        REQUIRE(rest != nullptr);
        CHECK(TextOf(*rest) == "rest");
        CHECK(pair.server->RecWait(got, 1) == -1);
        CHECK(pair.server->state == Socket::INVALID);
    }
    SUBCASE("more than is left and closed") {
        std::string whole(8, ' ');
        CHECK(pair.server->RecWait(reinterpret_cast<unsigned char*>(whole.data()), 8) == -1);
    }
    SUBCASE("our own close drops it") {
        pair.server->Close();
        CHECK(pair.server->RecWait(got, 1) == -1);
    }
}

TEST_CASE("exact reads put messages of every size together again") {
    Pair pair;
    std::string sent;
    for (int i = 0; i < 60000; ++i)
        sent += static_cast<char>(i * 7 + i / 256);
    std::thread peer([&] {
        for (size_t at = 0; at < sent.size(); at += 1009)
            pair.client->DataIndication(Bytes(sent.substr(at, 1009)));
    });
    std::string got(sent.size(), ' ');
    size_t at = 0;
    // Small, medium, and beyond what is received ahead.
    for (const int size : {6, 1, 300, 16000, 6, 20000, 6, 16384, 5}) {
        CHECK(pair.server->RecWait(reinterpret_cast<unsigned char*>(got.data()) + at, size) == 0);
        at += static_cast<size_t>(size);
    }
    const int rest = static_cast<int>(sent.size() - at);
    CHECK(pair.server->RecWait(reinterpret_cast<unsigned char*>(got.data()) + at, rest) == 0);
    peer.join();
    CHECK((got == sent));
}

TEST_CASE("a read of what has arrived tells silence from the end") {
    Pair pair;
    CHECK(pair.client->RecWait(0) == nullptr);
    CHECK(pair.client->state == Socket::CONNECTED);
    pair.server->Close();
    CHECK(pair.client->RecWait(5000) == nullptr);
    CHECK(pair.client->state == Socket::INVALID);
}

TEST_CASE("a signal does not end a wait") {
    struct sigaction action = {};
    action.sa_handler = IgnoreSignal;  // and no SA_RESTART
    sigaction(SIGUSR1, &action, nullptr);
    Pair pair;
    unsigned char got[2] = "";
    std::thread peer([&pair, reader = pthread_self()] {
        for (int i = 0; i < 5; ++i) {
            usleep(2000);
            pthread_kill(reader, SIGUSR1);
        }
        pair.client->DataIndication(Bytes("ok"));
    });
    CHECK(pair.server->RecWait(got, 2) == 0);
    peer.join();
    CHECK(std::string(got, got + 2) == "ok");
}

TEST_CASE("a write that cannot be finished leaves the socket invalid") {
    Reports console;
    Pair pair;
    SUBCASE("the peer has gone") {
        pair.server.reset();
        int result = 0;
        for (int i = 0; i < 100 && result == 0; ++i) {
            result = pair.client->DataIndication(Bytes("x"));
            usleep(1000);
        }
        CHECK(result == 2);
    }
    SUBCASE("the peer does not read") {
        const timeval limit = {0, 50000};
        setsockopt(pair.client->s, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        CHECK(pair.client->DataIndication(new OSBuf(std::string(64 << 20, 'x').data(), 64 << 20)) ==
              2);
    }
    CHECK(pair.client->state == Socket::INVALID);
    CHECK(console.Has("Socket::DataIndication: send() error "));
}

TEST_CASE("queued buffers go out in order, and none after a failure") {
    Reports console;
    Pair pair;
    for (const char* text : {"a", "b", "c"})
        CHECK(pair.client->Queue(Bytes(text)) == 0);
    CHECK(pair.client->FlushQueue(/*log=*/true) == 0);
    CHECK(console.Has("Socket::FlushQueue() size=3 to 127.0.0.1"));
    unsigned char got[3];
    CHECK(pair.server->RecWait(got, 3) == 0);
    CHECK(std::string(got, got + 3) == "abc");

    pair.client->Close();
    pair.client->Queue(Bytes("d"));
    pair.client->Queue(Bytes("e"));
    CHECK(pair.client->FlushQueue(/*log=*/false) == 2);
    CHECK(pair.client->queue.empty());
}

TEST_CASE("datagrams arrive whole, empty ones included") {
    Socket to(Socket::UDP, 0, false, htonl(INADDR_LOOPBACK));
    Socket from(Socket::UDP, 0, false, htonl(INADDR_LOOPBACK));
    REQUIRE(to.state == Socket::READY);
    for (const std::string text : {"first", "", "third"}) {
        CHECK(from.SendTo(Bytes(text), htonl(INADDR_LOOPBACK), to.LocalPort()) == 0);
        const auto got = to.RecWait(5000);
        REQUIRE(got != nullptr);
        CHECK(TextOf(*got) == text);
    }
    from.Close();
    Reports console;
    CHECK(from.SendTo(Bytes("late"), htonl(INADDR_LOOPBACK), to.LocalPort()) == 2);
}
