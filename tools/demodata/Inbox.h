// The shared inbox: inboxes, teammates, tags and conversations of questions and answers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/demodata/Company.h"
#include "tools/demodata/Tsv.h"

namespace demodata {

struct InboxOptions {
    int64_t calls;  // the number of conversations follows that of the calls, within bounds
    uint64_t seed;
    int64_t firstDay;  // days since 1970-01-01
    int64_t lastDay;
    int64_t now;  // seconds since 1970-01-01; later messages are left out
};

// Who answers messages, and the id that such a person has there.
std::vector<const Person*> Teammates(const Company& company);
std::string TeammateId(const Person& person);

void WriteInbox(const std::vector<Company>& companies, const InboxOptions& options,
                TableSet& tables);

}  // namespace demodata
