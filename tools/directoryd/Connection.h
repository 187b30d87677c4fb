// One client's connection, buffered both ways, so that no client can make the others wait.
#pragma once

#include <cstddef>
#include <string>

#include "ldap/ldap_rx.h"
#include "network/socketX.h"

namespace directoryd {

// Where clients arrive.
class Listener : public Socket {
  public:
    explicit Listener(unsigned long ip);
    // The next client's descriptor and address, or -1.
    int AcceptClient(sockaddr_in& remote) { return AcceptDescriptor(remote); }
};

class Connection : public Socket {
  public:
    Connection(int fd, const sockaddr_in& remote);

    // Takes the bytes for FlushOutput; answers 0.
    int DataIndication(OSBuf* b) override;
    // Sends what the client takes at once; the rest waits.
    void FlushOutput();
    size_t outputSize() const { return output_.size() - sent_; }

    // Receives what has arrived.
    void ReadInput();
    // Takes the next whole message out of what was received. False when there is none yet, or, and
    // then the state is INVALID, when what came is no message of at most 65,535 bytes.
    bool NextMessage(LDAPBytes& message);

    bool bound = false;    // the client has signed in
    bool closing = false;  // nothing is read any more; what waits is still sent

  private:
    std::string input_;
    size_t taken_ = 0;  // of input_
    std::string output_;
    size_t sent_ = 0;  // of output_
};

}  // namespace directoryd
