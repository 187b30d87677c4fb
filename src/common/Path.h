// Path.h: the run-time root, the one place that knows where the system's files really lie.
#pragma once

#include "common/UStringX.h"

// The path to open for `path`: the value of the environment variable LUMORA_ROOT in front of
// /Norvane, /media, /ftp, /hosts and /Library and whatever lies below them; any other path as it
// is. Applying it twice does no harm unless the root itself lies below one of those folders.
UString RootPath(const char* path);
