// The made-up customers: their departments, people and trunks. The same in every run.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace demodata {

struct Person {
    std::string name;
    std::string number;  // extension, as in the directory
    std::string ddi;     // the same telephone seen from outside
    std::string guid;
    size_t department;  // index in Company::departments; a person belongs to one
    int agentId = 0;    // 0: no agent of the contact centre; unique over all companies
};

struct Department {
    std::string name;  // also its people's cost centre
    std::string number;
    std::string ddi;
    std::string guid;
    bool queue = false;
    std::vector<size_t> people;  // indices in Company::people
};

struct Trunk {
    std::string dn;
    std::string description;
    bool internal;  // a tie line between the customer's own sites
};

struct Company {
    int id;
    int parentId;  // the subscriber above it; 0: none
    int type;      // 1: searches span the companies below it
    std::string name;
    std::string mailDomain;
    std::string guid;
    double share;  // of all calls
    std::vector<Department> departments;
    std::vector<Person> people;
    std::vector<Trunk> trunks;
    // Outside parties that the telephone system knows by name.
    std::vector<std::array<std::string, 2>> contacts;  // name, number
};

// Text of a GUID that is made from what it stands for: the same words give the same GUID.
std::string MakeGuid(const std::string& words);

// All customers, in the order of their ids.
std::vector<Company> MakeCompanies();

}  // namespace demodata
