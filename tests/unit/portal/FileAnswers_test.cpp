#include "portal/FileAnswers.h"

#include <arpa/inet.h>
#include <doctest/doctest.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <map>
#include <string>

#include "portal/LookupIface.h"

TEST_CASE("a chart is a session's own when its name is the whole id and a random number") {
    const std::string random = "_0123456789abcdef0123456789abcdef.json";
    const struct {
        std::string name;
        const char* session;
        bool own;
    } cases[] = {
        {"12" + random, "12", true},
        {"123" + random, "12", false},
        {"1" + random, "12", false},
        {random, "", false},
        {"12_1.json", "12", false},
        {"12", "12", false},
        {"", "12", false},
        {"12" + random + ".json", "12", false},
        {"12_0123456789abcdef0123456789abcde/.json", "12", false},
        {"12_../../../../../../../etc/passwd.json", "12", false},
        {"../12" + random, "12", false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.name);
        CHECK(IsOwnChart(c.name.c_str(), UString(c.session)) == c.own);
    }
}

TEST_CASE("the outside interface's address is the first that the machine has, in host order") {
    std::map<std::string, unsigned long> addresses;
    ifaddrs* all = nullptr;
    REQUIRE(getifaddrs(&all) == 0);
    for (const ifaddrs* each = all; each != nullptr; each = each->ifa_next)
        if (each->ifa_addr != nullptr && each->ifa_addr->sa_family == AF_INET)
            addresses.emplace(
                each->ifa_name,
                ntohl(reinterpret_cast<const sockaddr_in*>(each->ifa_addr)->sin_addr.s_addr));
    freeifaddrs(all);
    unsigned long expected = 0;
    for (const char* name : {"eth0", "eth1", "ppp0", "ppp1"})
        if (addresses.count(name) != 0) expected = addresses[name];
    CHECK(LookupIface(0) == expected);
}
