// One row of the call log.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/demodata/Tsv.h"

namespace demodata {

// The last three are the telephone system's own legs, no calls of anybody's.
enum TransferCall {
    kPlain,
    kTransferredAway,
    kReceived,  // also when it was passed on in its turn
    kAnnouncement,
    kAnnouncementRepeat,
    kRecording
};

// A caller or the party dialled.
struct Party {
    std::string number;
    std::string name;
    std::string shortNumber;  // '' for an outside party
    std::string_view trunk;   // '' for an inside party
    bool out = false;         // the call leaves through the trunk
};

struct Leg {
    int64_t id = 0;
    int64_t start = 0;  // seconds since 1970-01-01
    Party a;
    Party b;
    std::string remote;  // who answered: number, '' or '!service'
    std::string remoteName;
    std::string_view ddi;  // the number that an outside caller dialled
    std::string_view costCentre;
    std::string accountCode;
    int64_t transferTo = 0;  // id of the next leg; 0: none
    TransferCall transfer = kPlain;
    int ringing = 0;  // seconds until answered, or to the end
    int talking = 0;
    bool answered = false;
    int64_t cost = 0;  // ten-thousandths of the currency

    int64_t End() const { return start + ringing + talking; }
    // Sets who answered, after `ring` seconds and for `talk` seconds.
    void Answer(std::string number, std::string name, int ring, int talk);
    // A service of the telephone system took the call; nobody answered.
    void Service(const char* service, const char* name, int seconds);
    void Write(int customerId, TsvFile& file) const;
};

}  // namespace demodata
