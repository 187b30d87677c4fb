// LookupIface.h: the address under which this machine is reached through its outside interface.
#pragma once

// The IPv4 address, in host byte order, of the first of the interfaces ppp1, ppp0, eth1 and eth0
// that has one; 0 when none has. The argument is ignored.
unsigned long LookupIface(unsigned long);
