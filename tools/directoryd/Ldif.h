// The directory as a file in LDIF (RFC 2849), one value an attribute.
#pragma once

#include <string>

#include "tools/directoryd/Directory.h"

namespace directoryd {

// Adds the file's entries, each below one that stands before it. Throws std::runtime_error, which
// names the line, when the file cannot be read or an entry cannot be added.
void ReadLdif(const std::string& path, Directory& directory);

// Replaces the file by the directory as it is. At every moment the file is either the old or the
// new one, whole. Throws std::runtime_error.
void WriteLdif(const std::string& path, const Directory& directory);

}  // namespace directoryd
