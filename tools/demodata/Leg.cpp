#include "tools/demodata/Leg.h"

#include <cstdio>

namespace demodata {

namespace {

// Ids are unique over all customers, so the text is too.
std::string_view ConfId(int64_t id, char (&text)[24]) {
    if (id == 0) return {};
    const int size =
        std::snprintf(text, sizeof text, "conf-%012llx", static_cast<unsigned long long>(id));
    return {text, static_cast<size_t>(size)};
}

std::string_view Money(int64_t tenThousandths, char (&text)[32]) {
    const int size = std::snprintf(text, sizeof text, "%lld.%04d",
                                   static_cast<long long>(tenThousandths / 10000),
                                   static_cast<int>(tenThousandths % 10000));
    return {text, static_cast<size_t>(size)};
}

}  // namespace

void Leg::Answer(std::string number, std::string name, int ring, int talk) {
    remote = std::move(number);
    remoteName = std::move(name);
    ringing = ring;
    talking = talk;
    answered = true;
}

void Leg::Service(const char* service, const char* name, int seconds) {
    remote = service;
    remoteName = name;
    ringing = seconds;
}

void Leg::Write(int customerId, TsvFile& file) const {
    char conf[24];
    char nextConf[24];
    char money[32];
    file.Number(id).Number(customerId).Stamp(start);
    file.Plain(ConfId(id, conf)).Plain(ConfId(transferTo, nextConf)).Number(transfer);
    file.Text(a.number).Text(a.name).Text(a.shortNumber).Text(a.trunk).Number(a.out);
    file.Text(b.number).Text(b.name).Text(b.shortNumber).Text(remote).Text(remoteName);
    file.Text(b.trunk).Number(b.out);
    if (ddi.empty())
        file.Null();
    else
        file.Plain(ddi);
    file.Text(accountCode).Text(costCentre);
    file.Number(ringing + talking).Number(talking).Number(answered).Plain(Money(cost, money));
    file.EndRow();
}

}  // namespace demodata
