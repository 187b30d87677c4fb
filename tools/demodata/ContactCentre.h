// The contact centre's settings: queues, agents, reasons not to be available, completion codes and
// service levels of calls.
#pragma once

#include <array>
#include <vector>

#include "tools/demodata/Company.h"
#include "tools/demodata/Tsv.h"

namespace demodata {

// Why an agent takes no calls for a while. The order is that of the companies' reason codes.
enum NotAvailable { kBreak, kLunch, kMeeting, kTraining, kPaperwork };
constexpr int kReasons = 5;

// The id of a company's reason code.
inline int ReasonId(const Company& company, NotAvailable reason) {
    return (company.id - 1) * kReasons + reason + 1;
}

void WriteContactCentre(const std::vector<Company>& companies, TableSet& tables);

}  // namespace demodata
