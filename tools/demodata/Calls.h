// The call log: inbound, outbound and internal calls with their transfers, one row a leg.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tools/demodata/AgentLog.h"
#include "tools/demodata/Company.h"
#include "tools/demodata/Tsv.h"

namespace demodata {

constexpr int kCallDays = 91;

struct CallOptions {
    int64_t calls;  // of all companies together; a call with transfers has several rows
    uint64_t seed;
    int64_t lastDay;  // days since 1970-01-01; calls lie on this day and the 90 before it
    int64_t now;      // seconds since 1970-01-01; a call that would end later is left out
};

// The columns of the rows that WriteCalls writes.
extern const char kCallColumns[];

// Writes the calls company by company and day by day, so that memory does not grow with their
// number and rows arrive in the order of the table's primary key; the agents' log follows them.
// Tells the calls done so far now and then. Returns the number of rows.
int64_t WriteCalls(const std::vector<Company>& companies, const CallOptions& options, TsvFile& file,
                   AgentLog& agents, const std::function<void(int64_t)>& progress);

}  // namespace demodata
