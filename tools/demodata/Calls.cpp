#include "tools/demodata/Calls.h"

#include <algorithm>
#include <chrono>

#include "tools/demodata/CallMaker.h"
#include "tools/demodata/Random.h"

namespace demodata {

const char kCallColumns[] =
    "id, customerid, gmtdatetime, confId, transferConfId, transfercall, "
    "A_Num, A_Name, A_ShortNum, A_Trunk, A_Out, "
    "B_Num, B_Name, B_ShortNum, B_Remote, B_RemoteName, B_Trunk, B_Out, targetNumber, "
    "accountCode, origCostCentre, callduration, callconnected, hasconnected, totalcost";

namespace {

constexpr int kSecondsPerDay = 86400;
constexpr int64_t kProgressStep = 500000;

constexpr double kHourWeights[24] = {0.2, 0.1, 0.1, 0.1, 0.1, 0.2, 0.5, 2,   6,   10,  12,  12,
                                     8,   8,   11,  11,  10,  6,   2.5, 1.2, 0.8, 0.5, 0.3, 0.2};
// Thursday first: 1970-01-01 was one.
constexpr double kWeekdayWeights[7] = {1.0, 0.92, 0.16, 0.06, 1.12, 1.05, 1.02};

// How many of a company's calls fall on each of its days.
std::vector<int64_t> CallsByDay(int64_t calls, const Company& company, const CallOptions& options) {
    std::vector<double> sums;
    double sum = 0;
    for (int i = 0; i < kCallDays; ++i) {
        const int64_t day = options.lastDay - kCallDays + 1 + i;
        Random random(StreamSeed(~options.seed, company.id, day));
        sum += kWeekdayWeights[day % 7] * (0.92 + 0.16 * random.Unit());
        sums.push_back(sum);
    }
    std::vector<int64_t> result;
    int64_t done = 0;
    for (const double part : sums) {
        const auto until = static_cast<int64_t>(static_cast<double>(calls) * (part / sum) + 0.5);
        result.push_back(until - done);
        done = until;
    }
    return result;
}

// European clocks change in the first hours of the last Sunday of March and of October.
bool ClocksChange(int64_t day) {
    using namespace std::chrono;
    const sys_days when{days(day)};
    const year_month_day date(when);
    return weekday(when) == Sunday && (date.month() == March || date.month() == October) &&
           static_cast<unsigned>(date.day()) >= 25;
}

// A day's starting times in seconds since midnight, in order. A few calls lie where clocks and
// calendars are awkward: in the hours that a change of the clocks repeats, and around midnight.
std::vector<int> StartTimes(int64_t calls, bool clocksChange, Random& random) {
    double total = 0;
    for (const double weight : kHourWeights)
        total += weight;
    std::vector<int> times(static_cast<size_t>(calls));
    for (int& time : times) {
        double left = random.Unit() * total;
        int hour = 0;
        while (hour < 23 && left >= kHourWeights[hour])
            left -= kHourWeights[hour++];
        const double part = std::min(left / kHourWeights[hour], 1.0);
        time = hour * 3600 + std::min(static_cast<int>(part * 3600), 3599);
    }
    const size_t night = clocksChange ? std::min<size_t>(times.size() / 2, 12) : 0;
    for (size_t i = 0; i < night; ++i)
        times[i] = 300 + 600 * static_cast<int>(i);
    if (times.size() > 20) times.back() = kSecondsPerDay - random.Between(1, 240);
    std::sort(times.begin(), times.end());
    return times;
}

int64_t WriteLegs(const std::vector<Leg>& legs, const Company& company, int64_t now, TsvFile& file,
                  AgentLog& agents) {
    int64_t end = 0;
    for (const Leg& leg : legs)
        end = std::max(end, leg.End());
    if (end > now) return 0;
    for (const Leg& leg : legs) {
        leg.Write(company.id, file);
        agents.Add(leg);
    }
    return static_cast<int64_t>(legs.size());
}

// The calls of each company: the first takes what rounding leaves.
std::vector<int64_t> CallsByCompany(const std::vector<Company>& companies, int64_t calls) {
    std::vector<int64_t> result;
    int64_t left = calls;
    for (const Company& company : companies) {
        result.push_back(static_cast<int64_t>(static_cast<double>(calls) * company.share));
        left -= result.back();
    }
    result.front() += left;
    return result;
}

}  // namespace

int64_t WriteCalls(const std::vector<Company>& companies, const CallOptions& options, TsvFile& file,
                   AgentLog& agents, const std::function<void(int64_t)>& progress) {
    const std::vector<int64_t> byCompany = CallsByCompany(companies, options.calls);
    int64_t nextId = 1;
    int64_t rows = 0;
    int64_t done = 0;
    for (size_t c = 0; c < companies.size(); ++c) {
        const Company& company = companies[c];
        CallMaker maker(company, nextId);
        agents.BeginCompany(company);
        const std::vector<int64_t> byDay = CallsByDay(byCompany[c], company, options);
        for (int i = 0; i < kCallDays; ++i) {
            const int64_t day = options.lastDay - kCallDays + 1 + i;
            Random random(StreamSeed(options.seed, company.id, day));
            for (const int time :
                 StartTimes(byDay[static_cast<size_t>(i)], ClocksChange(day), random)) {
                rows += WriteLegs(maker.Make(day * kSecondsPerDay + time, random), company,
                                  options.now, file, agents);
                if (++done % kProgressStep == 0) progress(done);
            }
            agents.EndDay(day);
        }
        agents.EndCompany();
    }
    return rows;
}

}  // namespace demodata
