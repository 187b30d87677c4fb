// Every table but the call log: customers, portal users with their rights, directory mirrors.
#pragma once

#include <string>
#include <vector>

#include "tools/demodata/Company.h"
#include "tools/demodata/Tsv.h"

namespace demodata {

// Writes the tables into `folder`, and demo-users.tsv beside them: user name, password and a
// line on who it is, readable by its owner only. Adds each table to `script`.
void WritePortalTables(const std::vector<Company>& companies, const std::string& folder,
                       LoadScript& script);

}  // namespace demodata
