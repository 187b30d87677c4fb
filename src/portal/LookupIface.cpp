#include "portal/LookupIface.h"

#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

namespace {

const char* const local_ifname[5] = {nullptr, "ppp1", "ppp0", "eth1", "eth0"};

}  // namespace

unsigned long LookupIface(unsigned long) {
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return 0;
    unsigned long address = 0;
    for (const char* name : local_ifname) {
        if (name == nullptr || address != 0) continue;
        ifreq request{};
        strncpy(request.ifr_name, name, sizeof request.ifr_name - 1);
        if (ioctl(fd, SIOCGIFADDR, &request) != 0) continue;
        sockaddr_in found{};
        memcpy(&found, &request.ifr_addr, sizeof found);
        address = ntohl(found.sin_addr.s_addr);
    }
    close(fd);
    return address;
}
