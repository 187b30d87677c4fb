// The directory's entries, with the names and GUIDs of the database's mirror tables.
#pragma once

#include <string>
#include <vector>

#include "tools/demodata/Company.h"

namespace demodata {

// Writes <folder>/directory.ldif. Throws std::runtime_error.
void WriteDirectory(const std::vector<Company>& companies, const std::string& folder);

}  // namespace demodata
