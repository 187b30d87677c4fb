// OSIO.h: the base of the kernel's I/O objects, what a protocol layer reads from and writes to.
#pragma once

#include "network/OSBuf.h"

class OSIO : public OSListObj {
  public:
    OSIO() = default;
    OSIO(const OSIO&) = delete;
    OSIO& operator=(const OSIO&) = delete;

    // Writes the buffer's bytes and releases the buffer. 0: written; 2: failed.
    virtual int DataIndication(OSBuf* b) = 0;
    // Data that overtakes the queue, and data with addresses of its own: objects that know neither
    // release the buffer and answer 0.
    virtual int DataExpeditedIndication(OSBuf* b);
    virtual int DatagramIndication(OSBuf* b, void* from, void* to);
    // Waits up to `ms` milliseconds and answers a new buffer with all that has arrived, or null.
    [[nodiscard]] virtual std::unique_ptr<OSBuf> RecWait(int ms) = 0;
    // Reads exactly `n` bytes. 0: done; anything else: see the object.
    [[nodiscard]] virtual int RecWait(unsigned char* buf, int n) = 0;
};
