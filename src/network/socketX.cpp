#include "network/socketX.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>

#include "kernel/OSConsole.h"
#include "kernel/OSStartup.h"

unsigned long Socket::local_ipaddr = INADDR_ANY;
int Socket::read_wait_ms = 10000;
OSList<Socket> Socket::socket_list;
std::mutex Socket::cs;
bool Socket::SocketsInitialised = false;

namespace {

constexpr int kConnectMs = 2000;
constexpr int kSendSeconds = 5;
constexpr int kBacklog = 4;

sockaddr_in AddressOf(unsigned long ip, unsigned short port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = static_cast<in_addr_t>(ip);
    return address;
}

// The socket functions take every kind of address through this one type.
sockaddr* Generic(sockaddr_in& address) {
    return reinterpret_cast<sockaddr*>(&address);
}

// A peer that stops reading must not hold a page for longer than this.
void BoundSends(int fd) {
    const timeval limit = {kSendSeconds, 0};
    setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

// poll() that carries on after a signal with the time that is left.
int PollFor(pollfd& entry, int ms) {
    const int64_t end = os_clock() + ms;
    while (true) {
        const int result = poll(&entry, 1, ms);
        if (result >= 0 || errno != EINTR) return result;
        if (ms >= 0) ms = static_cast<int>(std::max<int64_t>(0, end - os_clock()));
    }
}

}  // namespace

void Socket::Init(unsigned long local_ip) {
    if (local_ip != 0) local_ipaddr = local_ip;
    SocketsInitialised = true;
}

Socket::Socket(Type t, unsigned short port, bool listen, unsigned long local_ip) : type(t) {
    Register();
    if (!Open() || !Bind(local_ip, port)) return;
    if (listen && ::listen(s, kBacklog) < 0) {
        ConsoleReport("Socket: listen() error %d", errno);
        Socket::Close();
        return;
    }
    state = READY;
}

Socket::Socket(Type t, int fd, const sockaddr_in* remote, int len) : type(t), s(fd) {
    Register();
    if (remote != nullptr && len > 0)
        std::memcpy(&remote_sin, remote, std::min(sizeof remote_sin, static_cast<size_t>(len)));
    if (fd < 0) return;
    BoundSends(fd);
    socklen_t size = sizeof local_sin;
    getsockname(fd, Generic(local_sin), &size);
    state = CONNECTED;
}

Socket::Socket(Type t, const char* host, unsigned short port) : type(t) {
    Register();
    if (!Open() || !Bind(local_ipaddr, 0)) return;
    if (host == nullptr || !Resolve(host)) {
        ConsoleReport("Socket: couldn't resolve host %s", host != nullptr ? host : "");
        Socket::Close();
        return;
    }
    remote_sin.sin_port = htons(port);
    if (type != TCP_CLIENT) {
        state = READY;
        return;
    }
    const bool switched = SetBlocking(false);
    int error = switched ? ConnectWithin(kConnectMs) : errno;
    if (error == 0 && !SetBlocking(true)) error = errno;
    if (!FinishConnect(error)) Socket::Close();
}

Socket::~Socket() {
    Socket::Close();
    const std::lock_guard<std::mutex> guard(cs);
    if (list() != nullptr) socket_list.Unlink(this);
}

void Socket::Register() {
    const std::lock_guard<std::mutex> guard(cs);
    if (!SocketsInitialised) Init(0);
    socket_list.Append(this);
}

bool Socket::Open() {
    s = socket(AF_INET, (type == UDP ? SOCK_DGRAM : SOCK_STREAM) | SOCK_CLOEXEC, 0);
    if (s < 0) {
        ConsoleReport("Socket: socket() error %d", errno);
        return false;
    }
    BoundSends(s);
    const int on = 1;
    setsockopt(s, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    return true;
}

bool Socket::Bind(unsigned long ip, unsigned short port) {
    local_sin = AddressOf(ip, port);
    if (bind(s, Generic(local_sin), sizeof local_sin) < 0) {
        ConsoleReport("Socket: bind() error %d for port %d", errno, port);
        Socket::Close();
        return false;
    }
    socklen_t size = sizeof local_sin;
    if (getsockname(s, Generic(local_sin), &size) < 0) {
        ConsoleReport("Socket: getsockname() error %d", errno);
        Socket::Close();
        return false;
    }
    return true;
}

bool Socket::Resolve(const char* host) {
    remote_sin = AddressOf(0, 0);
    if (std::isdigit(static_cast<unsigned char>(*host)) != 0)
        return inet_pton(AF_INET, host, &remote_sin.sin_addr) == 1;

    addrinfo wanted = {};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host, nullptr, &wanted, &found) != 0 || found == nullptr) return false;
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> list(found, freeaddrinfo);

    rmthostent.h_name = host;
    rmthostent.h_addr_list.clear();
    for (const addrinfo* at = found; at != nullptr; at = at->ai_next) {
        sockaddr_in address = {};
        std::memcpy(&address, at->ai_addr, sizeof address);
        rmthostent.h_addr_list.push_back(address.sin_addr);
    }
    remote_sin.sin_addr = rmthostent.h_addr_list.front();
    return true;
}

// Connects a non-blocking descriptor to remote_sin. 0, or the error.
int Socket::ConnectWithin(int ms) {
    if (connect(s, Generic(remote_sin), sizeof remote_sin) == 0) return 0;
    if (errno != EINPROGRESS && errno != EALREADY && errno != EINTR) return errno;
    if (!WaitWritable(ms)) return ETIMEDOUT;
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(s, SOL_SOCKET, SO_ERROR, &error, &size) < 0) return errno;
    return error;
}

bool Socket::FinishConnect(int error) {
    if (error != 0) {
        ConsoleReport("Socket::Socket() connect() error %d to %08x:%u from %08x:%u", error,
                      RemoteIP_h(), RemotePort(), LocalIP_h(), LocalPort());
        return false;
    }
    socklen_t size = sizeof local_sin;
    getsockname(s, Generic(local_sin), &size);
    state = CONNECTED;
    return true;
}

int Socket::Connect(unsigned long ip, unsigned short port) {
    remote_sin = AddressOf(ip, port);
    int error = connect(s, Generic(remote_sin), sizeof remote_sin) == 0 ? 0 : errno;
    // A signal does not stop the connect, which carries on by itself.
    if (error == EINTR || error == EINPROGRESS) error = ConnectWithin(kSendSeconds * 1000);
    if (error == EISCONN) error = 0;
    return FinishConnect(error) ? 0 : 2;
}

int Socket::ConnectAck() {
    return 0;
}

void Socket::Close() {
    if (s >= 0) close(s);
    s = -1;
    aheadFrom_ = aheadTo_ = 0;
    state = INVALID;
}

int Socket::AcceptDescriptor(sockaddr_in& remote) {
    while (true) {
        socklen_t size = sizeof remote;
        const int fd = accept4(s, Generic(remote), &size, SOCK_CLOEXEC);
        if (fd >= 0) return fd;
        if (errno == EINTR) continue;
        ConsoleReport("Socket::Accept() error %d", errno);
        return -1;
    }
}

std::unique_ptr<Socket> Socket::Accept() {
    sockaddr_in remote = {};
    const int fd = AcceptDescriptor(remote);
    if (fd < 0) return nullptr;
    return std::make_unique<Socket>(type, fd, &remote, static_cast<int>(sizeof remote));
}

bool Socket::SetBlocking(bool blocking) const {
    const int flags = fcntl(s, F_GETFL);
    if (flags < 0) return false;
    return fcntl(s, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK) == 0;
}

bool Socket::WaitInput(int ms) const {
    pollfd entry = {s, POLLIN, 0};
    return PollFor(entry, ms) > 0;
}

bool Socket::WaitWritable(int ms) const {
    pollfd entry = {s, POLLOUT, 0};
    return PollFor(entry, ms) > 0;
}

Socket::WaitResult Socket::WaitReadable(const char* who, int ms) {
    pollfd entry = {s, POLLIN | POLLPRI, 0};
    // poll() overlooks a negative descriptor, which is as bad as a closed one.
    int result = s >= 0 ? PollFor(entry, ms) : -1;
    if (s < 0 || (entry.revents & POLLNVAL) != 0) {
        errno = EBADF;
        result = -1;
    }
    if (result == 0) return kTimedOut;
    if (result > 0 && (entry.revents & POLLPRI) == 0 && (entry.revents & (POLLIN | POLLHUP)) != 0)
        return kReady;

    state = INVALID;
    if (result < 0) {
        ConsoleReport("%s::RecWait: select() %d", who, errno);
        return kFailed;
    }
    if ((entry.revents & POLLPRI) != 0) {
        ConsoleReport("%s::RecWait: exception condition on socket", who);
        return kException;
    }
    ConsoleReport("%s::RecWait: socket not ready", who);
    return kNotReadable;
}

const char* Socket::RemoteIPText() const {
    inet_ntop(AF_INET, &remote_sin.sin_addr, remoteText_, sizeof remoteText_);
    return remoteText_;
}

const char* Socket::RemoteHostname() const {
    return rmthostent.h_name.empty() ? RemoteIPText() : rmthostent.h_name.c_str();
}
