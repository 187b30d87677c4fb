// socketX.h: Socket, an IPv4 socket with bounded connects, reads and writes.
#pragma once

#include <netinet/in.h>
#include <sys/types.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "network/OSIO.h"

// A TCP connection, a listening TCP socket or a UDP socket. No operation throws: failures are
// reported on the console and show in `state` and in the return codes. A failed constructor leaves
// the descriptor `s` at -1, so test `state` (or `s`) after construction.
//
// Addresses (`ip`) are in network order, ports in host order. One thread at a time uses a socket.
//
//   Socket socket(Socket::TCP_CLIENT, "directory.example", 4000);
//   if (socket.state != Socket::CONNECTED) return;
//   socket.DataIndication(new OSBuf(request, requestSize));
//   unsigned char header[6];
//   if (socket.RecWait(header, sizeof header) != 0) return;
class Socket : public OSIO {
  public:
    enum Type { UDP, TCP_CLIENT, TCP_SERVER };
    enum State {
        INVALID,  // not open, or broken: after any failed read or write and the peer's close
        READY,    // bound, or bound and listening
        CONNECTED,
    };
    // What the last look-up of a host name gave.
    struct HostEntry {
        std::string h_name;
        std::vector<in_addr> h_addr_list;
    };

    // `local_ip`, when not zero, becomes `local_ipaddr`.
    static void Init(unsigned long local_ip);

    // A local socket, bound to `local_ip` (0: any) and `port` (0: one that is free), listening with
    // a backlog of 4 when `listen` is true.
    Socket(Type t, unsigned short port, bool listen, unsigned long local_ip = local_ipaddr);
    // Takes over an accepted descriptor and copies its peer's address of `len` bytes.
    Socket(Type t, int fd, const sockaddr_in* remote, int len);
    // Looks `host` up, which a name that begins with a digit is not: it must be a dotted address.
    // A TCP_CLIENT then connects, within 2 seconds after the look-up.
    Socket(Type t, const char* host, unsigned short port);

    // Sends the whole buffer, within about 5 seconds. 0, or 2 and INVALID.
    int DataIndication(OSBuf* b) override;
    // What an exact read has left over comes first, by itself and at once. Null also when the wait
    // ends without data (the state stays) and when the peer has closed (INVALID).
    [[nodiscard]] std::unique_ptr<OSBuf> RecWait(int ms) override;
    // Receives ahead from a stream, so do not look at the descriptor for more beside it.
    // 0: done; 3: nothing arrived for `read_wait_ms`, the bytes before that are lost; 1: an
    // exception condition; 2: not readable; -1: the peer closed, or an error. 1, 2 and -1 leave
    // INVALID.
    [[nodiscard]] int RecWait(unsigned char* buf, int n) override;
    ~Socket() override;
    // The pending connection, which the caller then owns, or null.
    [[nodiscard]] virtual std::unique_ptr<Socket> Accept();
    virtual void Close();
    // Takes the buffer for a later FlushQueue; answers 0.
    virtual int Queue(OSBuf* b);
    // Writes all queued buffers in order. After a failure, whose code it answers, it releases the
    // rest unsent. `log` reports the number of buffers and the peer first.
    virtual int FlushQueue(bool log);
    // Connects this socket, within about 5 seconds. 0 and CONNECTED, or 2.
    virtual int Connect(unsigned long ip, unsigned short port);
    // The peer's acknowledgement of a connection; TCP has nothing to add and answers 0.
    virtual int ConnectAck();
    // Sends one datagram. 0, or 2.
    virtual int SendTo(OSBuf* b, unsigned long ip, unsigned short port);
    // True when what is written is encrypted.
    virtual bool Secure() const { return false; }

    const char* RemoteIPText() const;    // dotted; lives as long as the socket
    const char* RemoteHostname() const;  // the name looked up, else the dotted address
    uint32_t RemoteIP_n() const { return remote_sin.sin_addr.s_addr; }
    uint32_t RemoteIP_h() const { return ntohl(RemoteIP_n()); }
    unsigned short RemotePort() const { return ntohs(remote_sin.sin_port); }
    uint32_t LocalIP_n() const { return local_sin.sin_addr.s_addr; }
    uint32_t LocalIP_h() const { return ntohl(LocalIP_n()); }
    unsigned short LocalPort() const { return ntohs(local_sin.sin_port); }

    Type type;
    State state = INVALID;
    sockaddr_in local_sin = {};
    sockaddr_in remote_sin = {};
    int s = -1;
    OSStream queue;
    HostEntry rmthostent;

    static unsigned long local_ipaddr;  // where sockets are bound; 0: any
    static int read_wait_ms;            // how long an exact read waits for more: 10 seconds
    // All live sockets. They stand in it and are not owned by it, so a socket can be in no other
    // list.
    static OSList<Socket> socket_list;
    static std::mutex cs;  // guards socket_list
    static bool SocketsInitialised;

  protected:
    enum WaitResult { kReady, kTimedOut, kFailed, kException, kNotReadable };

    // Waits for data; a negative `ms` waits for ever, and signals do not shorten the time. Anything
    // but kReady and kTimedOut is reported in the name of the class `who` and leaves INVALID.
    WaitResult WaitReadable(const char* who, int ms);
    // True when something can be read, or written, within `ms` milliseconds; negative: for ever.
    bool WaitInput(int ms) const;
    bool WaitWritable(int ms) const;
    bool SetBlocking(bool blocking) const;
    // The next pending connection and its peer, or -1.
    int AcceptDescriptor(sockaddr_in& remote);

  private:
    bool OwnedByList() const override { return false; }
    void Register();
    bool Open();
    bool Bind(unsigned long ip, unsigned short port);
    bool Resolve(const char* host);
    int ConnectWithin(int ms);
    bool FinishConnect(int error);
    int PendingBytes();
    ssize_t Receive(void* to, size_t room);
    ssize_t ReceivePart(unsigned char* to, size_t room);
    size_t TakeAhead(unsigned char* to, size_t room);

    // What exact reads have received beyond the bytes they were asked for.
    std::unique_ptr<unsigned char[]> ahead_;
    size_t aheadFrom_ = 0;
    size_t aheadTo_ = 0;
    mutable char remoteText_[INET_ADDRSTRLEN] = "";
};
