// MoveBytes.h: bytes from a descriptor to a page's sink.
#pragma once

#include <sys/types.h>

class WebRender;

// Moves the next bytes of a file, at `*at`, which goes on with them, or, when that is null, of a
// pipe. To standard output they go without a copy where the system can do that: one of the two must
// be a pipe. How many; 0 at the end; -1 for a failure, with errno: EPIPE says that the reader of
// standard output has gone.
[[nodiscard]] ssize_t MoveBytes(int from, off_t* at, WebRender& out);
