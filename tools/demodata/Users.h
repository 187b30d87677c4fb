// The people who sign in to the portal: one for each role and each way of seeing time.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace demodata {

struct PortalUser {
    int id;  // unique over all customers
    int companyId;
    std::string name;  // as typed at sign-in
    std::string fullName;
    std::string purpose;
    std::vector<int> rights;
    std::vector<std::array<std::string, 2>> attributes;  // name, value

    std::string Password() const { return "demo-" + name; }
    // bcrypt hash of the password. The salt is made from the name, so that runs do not differ.
    std::string PasswordHash() const;
};

const std::vector<PortalUser>& PortalUsers();

// The department names that `restricted` may see, and the queues that `supervisor` manages.
extern const std::array<const char*, 2> kRestrictedDepartments;
extern const std::array<const char*, 2> kSupervisedQueues;
// The id of the one inbox that `restricted` may see.
extern const char kRestrictedInbox[];
// How many of its company's teammates `restricted` may see.
constexpr size_t kRestrictedTeammates = 2;

}  // namespace demodata
