#include "tools/demodata/Users.h"

#include <crypt.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "tools/demodata/Company.h"

namespace demodata {

const std::array<const char*, 2> kRestrictedDepartments = {"Support", "R&D <Labs>"};
const std::array<const char*, 2> kSupervisedQueues = {"Sales", "Support"};
const char kRestrictedInbox[] = "inb_1a";

std::string PortalUser::PasswordHash() const {
    // Hexadecimal digits are all in bcrypt's alphabet; the last one is chosen from those that
    // stand for a whole number of bytes.
    const std::string guid = MakeGuid("salt/" + name);
    std::string salt = "$2y$05$";
    for (const char c : guid)
        if (c != '-' && salt.size() < 28) salt += c;
    salt += 'u';
    crypt_data data;
    std::memset(&data, 0, sizeof data);
    const char* hash = crypt_r(Password().c_str(), salt.c_str(), &data);
    if (hash == nullptr || hash[0] == '*') throw std::runtime_error("crypt refuses bcrypt");
    return hash;
}

const std::vector<PortalUser>& PortalUsers() {
    const std::vector<int> managerRights = {1, 2, 4, 32, 40};
    static const std::vector<PortalUser> users = {
        {1,
         1,
         "admin",
         "Alex Admin",
         "administrator of Northmoor Instruments",
         managerRights,
         {{"administrator", "1"}}},
        {2,
         1,
         "manager",
         "Morgan Manager",
         "manager, sees every call; no time zone of their own",
         managerRights,
         {{"myreport", "callsbyday"}, {"myreport", "unanswered"}}},
        {3,
         1,
         "supervisor",
         "Sandy Supervisor",
         "supervises the queues Sales and Support",
         {32},
         {}},
        {4, 1, "restricted", "Robin Restricted", "sees Support and R&D <Labs> only", {}, {}},
        {5, 1, "noreports", "Nico Noreports", "may not run call reports", {16}, {}},
        {6, 1, "limited", "Leslie Limited", "may not change settings", {8}, {}},
        {7,
         1,
         "masked",
         "Max Masked",
         "sees reports of the category Call only",
         managerRights,
         {{"reportmask", "2"}}},
        {8,
         1,
         "zoned",
         "Áine O'Brien",
         "manager in New York",
         managerRights,
         {{"timezone", "America/New_York"}}},
        {9,
         1,
         "london",
         "Lee London",
         "manager in London",
         managerRights,
         {{"timezone", "Europe/London"}}},
        {10,
         1,
         "kolkata",
         "Kiran Kolkata",
         "manager in Kolkata",
         managerRights,
         {{"timezone", "Asia/Kolkata"}}},
        {11,
         1,
         "sydney",
         "Sam Sydney",
         "manager in Sydney",
         managerRights,
         {{"timezone", "Australia/Sydney"}}},
        {12,
         2,
         "manager2",
         "Niamh D'Arcy",
         "manager of Calder Logistics (two.localhost)",
         managerRights,
         {}},
        {13,
         3,
         "manager3",
         "Renée Trelawny",
         "manager of Brightwell Group and the two companies below it (three.localhost)",
         managerRights,
         {}},
        {14,
         4,
         "manager4",
         "Perran Carlyon",
         "manager of Brightwell Care (three.localhost)",
         managerRights,
         {}},
        {15,
         5,
         "manager5",
         "Jory Pascoe",
         "manager of Brightwell Homes (three.localhost)",
         managerRights,
         {}},
    };
    return users;
}

}  // namespace demodata
