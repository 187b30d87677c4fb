// TestPeers.h: what the socket tests share: the console's text and a plain peer on the loopback.
#pragma once

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "kernel/OSConsole.h"
#include "network/socketX.h"

// Collects what is reported while it lives.
class ConsoleText {
  public:
    ConsoleText() : stream_(open_memstream(&text_, &size_)), console_(stream_), before_(Console) {
        Console = &console_;
    }
    ~ConsoleText() {
        Console = before_;
        std::fclose(stream_);
        std::free(text_);
    }
    bool Has(const char* part) {
        std::fflush(stream_);
        return std::string(text_, size_).find(part) != std::string::npos;
    }

  private:
    char* text_ = nullptr;
    size_t size_ = 0;
    FILE* stream_;
    OSConsole console_;
    OSConsole* before_;
};

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
