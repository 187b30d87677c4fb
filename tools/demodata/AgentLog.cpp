#include "tools/demodata/AgentLog.h"

#include <algorithm>

#include "tools/demodata/ContactCentre.h"

namespace demodata {

namespace {

constexpr char kLoggedOut[] = "ASLoggedOut";
constexpr char kNotAvailable[] = "ASNotAvailable";
constexpr char kWaiting[] = "ASWaiting";
constexpr char kPresenting[] = "ASPresenting";
constexpr char kBusy[] = "ASBusy";
constexpr char kWrapUp[] = "ASWrapUp";
constexpr char kBusyOther[] = "ASBusyOther";
constexpr char kBlacklist[] = "ASBlacklist";

constexpr int64_t kHour = 3600;
constexpr int64_t kDay = 86400;
constexpr int64_t kEarliestLogin = 6 * kHour;
constexpr int64_t kLatestCall = 20 * kHour;
constexpr int64_t kBlacklistSeconds = 60;

// Thursday first: 1970-01-01 was one.
bool IsWeekend(int64_t day) {
    return day % 7 == 2 || day % 7 == 3;
}

}  // namespace

AgentLog::AgentLog(const std::string& folder, uint64_t seed, int64_t now)
    : seed_(seed),
      now_(now),
      states_(folder, "CallCentreAgentStateLog"),
      help_(folder, "CallCentreAgentHelpLog"),
      present_(folder, "CallCentreAgent_tmp") {}

void AgentLog::BeginCompany(const Company& company) {
    company_ = &company;
    agents_.clear();
    byNumber_.clear();
    for (const Person& person : company.people) {
        if (person.agentId == 0) continue;
        byNumber_[person.number] = agents_.size();
        agents_.emplace_back().person = &person;
    }
}

void AgentLog::Add(const Leg& leg) {
    if (leg.transfer > kReceived) return;
    if (leg.a.trunk.empty()) {
        const auto caller = byNumber_.find(leg.a.number);
        if (caller != byNumber_.end() && leg.ringing + leg.talking > 0)
            agents_[caller->second].tasks.push_back({leg.start, leg.End(), false});
    }
    if (!leg.answered || !leg.b.trunk.empty()) return;
    const auto found = byNumber_.find(leg.remote);
    if (found == byNumber_.end()) return;
    Agent& agent = agents_[found->second];
    const bool fromQueue = leg.b.number != leg.remote;
    agent.tasks.push_back({leg.start + leg.ringing, leg.End(), fromQueue});
}

void AgentLog::EndDay(int64_t day) {
    changes_.clear();
    for (Agent& agent : agents_) {
        Random random(
            StreamSeed(seed_ ^ 0xA6E27, company_->id, day * 4096 + agent.person->agentId));
        std::stable_sort(agent.tasks.begin(), agent.tasks.end(),
                         [](const Task& a, const Task& b) { return a.start < b.start; });
        const bool works = !agent.tasks.empty() || (!IsWeekend(day) && random.Chance(0.93));
        if (works) Work(agent, day * kDay, random);
        agent.tasks.clear();
    }
    std::stable_sort(changes_.begin(), changes_.end(),
                     [](const Change& a, const Change& b) { return a.time < b.time; });
    for (const Change& change : changes_) {
        states_.Stamp(change.time).Number(company_->id).Text(change.person->name);
        states_.Text(change.person->number).Plain(change.from).Plain(change.to);
        states_.Number(change.seconds).Number(change.reason).EndRow();
    }
}

void AgentLog::Enter(Agent& agent, int64_t time, const char* state, int reason) {
    if (time > now_) return;
    if (agent.state == nullptr) {
        // Before the log begins they had gone home.
        agent.state = kLoggedOut;
        agent.since = time - 14 * kHour;
    }
    changes_.push_back({time, agent.person, agent.state, state, time - agent.since, agent.reason});
    agent.state = state;
    agent.since = time;
    agent.reason = reason;
}

std::vector<AgentLog::Pause> AgentLog::Pauses(int64_t midnight, Random& random) const {
    const auto at = [&](int64_t time, int spread) {
        return midnight + time + random.Between(0, spread);
    };
    std::vector<Pause> pauses;
    pauses.push_back({at(10 * kHour, 2400), random.Between(480, 960), ReasonId(*company_, kBreak)});
    pauses.push_back(
        {at(12 * kHour, 5400), random.Between(1700, 3700), ReasonId(*company_, kLunch)});
    if (random.Chance(0.25))
        pauses.push_back({at(14 * kHour, 1200), random.Between(1500, 3600),
                          ReasonId(*company_, random.Chance(0.6) ? kMeeting : kTraining)});
    pauses.push_back({at(15 * kHour, 3000), random.Between(480, 960), ReasonId(*company_, kBreak)});
    if (random.Chance(0.4))
        pauses.push_back(
            {at(16 * kHour, 1200), random.Between(300, 1500), ReasonId(*company_, kPaperwork)});
    return pauses;
}

void AgentLog::Work(Agent& agent, int64_t midnight, Random& random) {
    std::vector<Task> tasks;
    for (const Task& task : agent.tasks)
        if (task.start >= midnight + kEarliestLogin + 600 && task.end <= midnight + kLatestCall)
            tasks.push_back(task);
    const bool weekend = IsWeekend(midnight / kDay);
    if (weekend && tasks.empty()) return;
    int64_t login = midnight + 8 * kHour + random.Between(0, 75 * 60);
    int64_t logout = midnight + 16 * kHour + random.Between(30 * 60, 2 * 60 * 60);
    if (!tasks.empty()) {
        if (weekend) login = logout = tasks.front().start;
        login = std::min(login, tasks.front().start - random.Between(120, 600));
        logout = std::max(logout, tasks.back().end + random.Between(120, 900));
    }
    // Some think of logging in only when they are at their desk, and are not available till then.
    if (agent.state != kNotAvailable && random.Chance(0.6)) {
        Enter(agent, login, kNotAvailable);
        login += random.Between(10, 90);
    }
    Enter(agent, login, kWaiting);

    std::vector<Pause> pauses = weekend ? std::vector<Pause>() : Pauses(midnight, random);
    size_t nextPause = 0;
    int64_t free = login;  // when the agent's last change ended
    for (size_t i = 0; i <= tasks.size(); ++i) {
        const int64_t until = i < tasks.size() ? tasks[i].start - 30 : logout - 60;
        while (nextPause < pauses.size()) {
            const Pause& pause = pauses[nextPause];
            const int64_t from = std::max(free + 5, pause.from);
            // A pause gives way to a call that the agent is known to have taken.
            const int64_t to = std::min(from + pause.seconds, until);
            if (to - from < 240) break;
            Enter(agent, from, kNotAvailable, pause.reason);
            Enter(agent, to, kWaiting);
            free = to;
            ++nextPause;
        }
        if (i == tasks.size() || tasks[i].start < free + 15) continue;
        if (tasks[i].fromQueue && tasks[i].start > free + 200 && random.Chance(0.03)) {
            // Rung in vain: the agent gets no call for a while.
            Enter(agent, free + 30, kPresenting);
            Enter(agent, free + 50, kBlacklist);
            Enter(agent, free + 50 + kBlacklistSeconds, kWaiting);
        }
        Take(agent, tasks[i], random);
        free = std::max(free, agent.since);
    }
    if (random.Chance(0.02))
        Enter(agent, std::max(free + 5, logout), kNotAvailable);  // forgot to log out
    else
        Enter(agent, std::max(free + 5, logout), kLoggedOut);
}

void AgentLog::Take(Agent& agent, const Task& task, Random& random) {
    if (!task.fromQueue) {
        Enter(agent, task.start, kBusyOther);
        Enter(agent, task.end, kWaiting);
        return;
    }
    Enter(agent, task.start - random.Between(2, 10), kPresenting);
    Enter(agent, task.start, kBusy);
    if (task.end - task.start > 120 && random.Chance(0.03))
        AskForHelp(agent, task.start + 40, task.start + 100);
    Enter(agent, task.end, kWrapUp);
    Enter(agent, task.end + random.Seconds(18, 3), kWaiting);
}

void AgentLog::AskForHelp(const Agent& agent, int64_t time, int64_t until) {
    if (until > now_) return;
    help_.Number(agent.person->agentId).Stamp(time).Number(1).EndRow();
    help_.Number(agent.person->agentId).Stamp(until).Number(0).EndRow();
}

void AgentLog::EndCompany() {
    for (const Agent& agent : agents_) {
        present_.Number(agent.person->agentId).Text(agent.person->name).Text(agent.person->number);
        present_.Number(company_->id).Number(agent.reason).EndRow();
    }
}

void AgentLog::Finish(LoadScript& script) {
    states_.Finish();
    help_.Finish();
    present_.Finish();
    script.Add("CallCentreAgentStateLog",
               "timestamp, customerid, agentName, AgentNumber, prevState, newState, "
               "secondsInPrevState, clearCode");
    script.Add("CallCentreAgentHelpLog", "agentId, gmtDateTime, newState");
    script.Add("CallCentreAgent_tmp", "id, agentName, agentNumber, customerId, NAReason");
}

}  // namespace demodata
