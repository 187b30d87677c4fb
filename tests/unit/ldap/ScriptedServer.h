// ScriptedServer.h: a peer that answers the n-th request with the n-th bytes of its script.
#pragma once

#include <arpa/inet.h>
#include <doctest/doctest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "LdapTest.h"

// Serves one connection; at the end of the script, or when the client closes, it closes. The tests'
// messages are all shorter than 128 bytes.
class ScriptedServer {
  public:
    // Port 0: any that is free.
    ScriptedServer(const char* address, unsigned short port, std::vector<std::string> script)
        : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const int on = 1;
        setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in at = {};
        at.sin_family = AF_INET;
        at.sin_port = htons(port);
        inet_pton(AF_INET, address, &at.sin_addr);
        socklen_t size = sizeof at;
        void* generic = &at;
        REQUIRE(bind(listener_, static_cast<sockaddr*>(generic), size) == 0);
        REQUIRE(listen(listener_, 4) == 0);
        getsockname(listener_, static_cast<sockaddr*>(generic), &size);
        port_ = ntohs(at.sin_port);
        thread_ = std::thread(&ScriptedServer::Serve, this, std::move(script));
    }
    ~ScriptedServer() { Requests(); }
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    unsigned short port() const { return port_; }

    // Waits until the connection has ended: what the client sent, a message a line, in hex.
    const std::string& Requests() {
        if (thread_.joinable()) {
            shutdown(listener_, SHUT_RDWR);
            thread_.join();
            close(listener_);
        }
        return requests_;
    }

  private:
    bool ReadRequest(int connection) {
        unsigned char message[256];
        if (recv(connection, message, 2, MSG_WAITALL) != 2) return false;
        const ssize_t length = message[1];
        if (recv(connection, message + 2, length, MSG_WAITALL) != length) return false;
        requests_ += ToHex(message, length + 2) + "\n";
        return true;
    }

    void Serve(const std::vector<std::string>& script) {
        const int connection = accept(listener_, nullptr, nullptr);
        if (connection < 0) return;
        for (const std::string& answer : script) {
            if (!ReadRequest(connection)) break;
            const Bytes bytes = FromHex(answer);
            if (send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) break;
        }
        shutdown(connection, SHUT_WR);
        while (ReadRequest(connection))
            continue;
        close(connection);
    }

    int listener_;
    unsigned short port_ = 0;
    std::string requests_;
    std::thread thread_;
};
