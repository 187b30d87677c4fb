// tlspeer: one end of a TLS connection, for a conversation with another TLS program.
//
// usage: peer_tls client PORT CERTIFICATE KEY CA WORD   connects to 127.0.0.1, sends WORD and a
//                                                       newline, prints the line that comes back
//        peer_tls server CERTIFICATE KEY CA             prints its port, takes one connection and
//                                                       answers the line that comes, in capitals
// The last line printed is how it went: "done", "refused" (no connection, or no handshake),
// "silent" (nothing more came for a while) or "broken" (the stream ended before its line).
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "kernel/OSConsole.h"
#include "kernel/OSStartup.h"
#include "network/SecureSocket.h"

namespace {

constexpr int kWaitMs = 500;
constexpr int kMostSilentWaits = 4;

// The next line, with its newline; what is cut off is not a line.
const char* ReadLine(Socket& socket, std::string& line) {
    int silent = 0;
    while (line.empty() || line.back() != '\n') {
        const auto got = socket.RecWait(kWaitMs);
        if (got != nullptr) line.append(got->data(), got->data() + got->size());
        if (socket.state != Socket::CONNECTED) return "broken";
        silent = got != nullptr ? 0 : silent + 1;
        if (silent == kMostSilentWaits) return "silent";
    }
    return "done";
}

void Send(Socket& socket, const std::string& text) {
    socket.DataIndication(new OSBuf(text.data(), text.size()));
}

const char* Ask(int port, const std::string& word) {
    SecureSocket socket(Socket::TCP_CLIENT, "127.0.0.1", static_cast<unsigned short>(port));
    if (!socket.Secure()) return "refused";
    Send(socket, word + "\n");
    std::string line;
    const char* const outcome = ReadLine(socket, line);
    std::fputs(line.c_str(), stdout);
    return outcome;
}

const char* Answer() {
    SecureSocket listener(Socket::TCP_SERVER, 0, true, htonl(INADDR_LOOPBACK));
    std::printf("%d\n", listener.LocalPort());
    std::fflush(stdout);
    const auto client = listener.Accept();
    if (client == nullptr) return "refused";
    std::string line;
    const char* const outcome = ReadLine(*client, line);
    std::transform(line.begin(), line.end(), line.begin(), [](char c) {
        return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    });
    Send(*client, line);
    return outcome;
}

}  // namespace

int main(int argc, char** argv) {
    os_startup();
    Console->SetStream(stderr);
    const bool client = argc == 7 && std::string(argv[1]) == "client";
    if (!client && argc != 5) return 2;
    char** const files = argv + (client ? 3 : 2);
    SecureSocket::SetKeys(files[0], files[1], files[2]);
    std::puts(client ? Ask(std::atoi(argv[2]), argv[6]) : Answer());
    return 0;
}
