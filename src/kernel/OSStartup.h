// OSStartup.h: starting the operating-system layer, and its clock.
#pragma once

#include <cstdint>

// Called once, first in `main`: makes sure that descriptors 0, 1 and 2 are open (a file or a
// connection that landed on one of them would be written into by every print) and gives `Console`
// its object, which has no stream yet.
void os_startup();

// Milliseconds since an arbitrary start; never goes back. Only differences mean anything.
int64_t os_clock();
