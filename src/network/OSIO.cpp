#include "network/OSIO.h"

int OSIO::DataExpeditedIndication(OSBuf* b) {
    const std::unique_ptr<OSBuf> released(b);
    return 0;
}

int OSIO::DatagramIndication(OSBuf* b, void*, void*) {
    return OSIO::DataExpeditedIndication(b);
}
