#include "tools/directoryd/Server.h"

#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "kernel/OSConsole.h"
#include "tools/directoryd/Ldif.h"

namespace directoryd {

namespace {

constexpr size_t kMostClients = 200;
// A client that lets more than this wait for it gets no further answers until it reads.
constexpr size_t kMostOutput = 1 << 20;

volatile sig_atomic_t writeAsked = 0;
volatile sig_atomic_t endAsked = 0;
sigset_t whileWaiting;

void TakeSignal(int number) {
    (number == SIGHUP ? writeAsked : endAsked) = 1;
}

}  // namespace

void CatchSignals() {
    sigset_t caught;
    sigemptyset(&caught);
    struct sigaction action = {};
    action.sa_handler = TakeSignal;
    for (const int number : {SIGHUP, SIGTERM, SIGINT}) {
        sigaddset(&caught, number);
        sigaction(number, &action, nullptr);
    }
    sigprocmask(SIG_BLOCK, &caught, &whileWaiting);
    for (const int number : {SIGHUP, SIGTERM, SIGINT})
        sigdelset(&whileWaiting, number);
}

bool Server::Run() {
    while (endAsked == 0) {
        Wait();
        if (writeAsked != 0) {
            writeAsked = 0;
            Save();
        }
    }
    return Save();
}

void Server::Wait() {
    std::vector<pollfd> waits;
    // poll() passes over a negative descriptor.
    waits.push_back({clients_.size() < kMostClients ? listener_.s : -1, POLLIN, 0});
    for (const auto& client : clients_) {
        const bool reads = !client->closing && client->outputSize() <= kMostOutput;
        const int events = (reads ? POLLIN : 0) | (client->outputSize() > 0 ? POLLOUT : 0);
        waits.push_back({client->s, static_cast<short>(events), 0});
    }
    if (ppoll(waits.data(), waits.size(), nullptr, &whileWaiting) < 0) return;

    for (size_t i = 0; i < clients_.size(); ++i)
        if (waits[i + 1].revents != 0) Serve(*clients_[i], waits[i + 1].revents);
    std::erase_if(clients_, [](const std::unique_ptr<Connection>& client) {
        return client->state == Socket::INVALID || (client->closing && client->outputSize() == 0);
    });
    if (waits[0].revents != 0) Accept();
}

void Server::Accept() {
    sockaddr_in remote = {};
    const int fd = listener_.AcceptClient(remote);
    if (fd >= 0) clients_.push_back(std::make_unique<Connection>(fd, remote));
}

void Server::Serve(Connection& client, short events) {
    if ((events & POLLIN) != 0)
        client.ReadInput();
    else if ((events & (POLLERR | POLLHUP)) != 0)
        client.state = Socket::INVALID;
    if (client.state != Socket::INVALID) client.FlushOutput();
    LDAPBytes message;
    while (client.state != Socket::INVALID && !client.closing &&
           client.outputSize() <= kMostOutput && client.NextMessage(message)) {
        service_.Answer(client, std::move(message));
        client.FlushOutput();
    }
}

bool Server::Save() {
    if (file_.empty() || !directory_.changed()) return true;
    try {
        WriteLdif(file_, directory_);
        directory_.SetChanged(false);
        ConsoleReport("directoryd: wrote %zu entries to %s", directory_.size(), file_.c_str());
        return true;
    } catch (const std::runtime_error& error) {
        ConsoleReport("directoryd: %s", error.what());
        return false;
    }
}

}  // namespace directoryd
