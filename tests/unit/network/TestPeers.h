// TestPeers.h: what the socket tests share: a plain peer on the loopback.
#pragma once

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "network/socketX.h"
#include "unit/Reports.h"

// A connected pair over the loopback, both ends ours.
struct Pair {
    Pair() {
        Socket listener(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
        client = std::make_unique<Socket>(Socket::TCP_CLIENT, "127.0.0.1", listener.LocalPort());
        server = listener.Accept();
    }
    std::unique_ptr<Socket> client;
    std::unique_ptr<Socket> server;
};

inline OSBuf* Bytes(const std::string& text) {
    return new OSBuf(text.data(), text.size());
}

inline std::string TextOf(const OSBuf& buffer) {
    return {buffer.data(), buffer.data() + buffer.size()};
}
