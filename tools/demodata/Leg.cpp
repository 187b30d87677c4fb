#include "tools/demodata/Leg.h"

#include <chrono>
#include <cstdio>

namespace demodata {

namespace {

std::string_view Stamp(int64_t seconds, char (&text)[48]) {
    using namespace std::chrono;
    const sys_seconds when{std::chrono::seconds(seconds)};
    const sys_days day = floor<days>(when);
    const year_month_day date(day);
    const hh_mm_ss clock(when - day);
    const int size = std::snprintf(
        text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()));
    return {text, static_cast<size_t>(size)};
}

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
    char stamp[48];
    char conf[24];
    char nextConf[24];
    char money[32];
    file.Number(id).Number(customerId).Plain(Stamp(start, stamp));
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
