// The agents' working days: a log of their changes of state that agrees with the calls they took.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/demodata/Company.h"
#include "tools/demodata/Leg.h"
#include "tools/demodata/Random.h"
#include "tools/demodata/Tsv.h"

namespace demodata {

// Fills CallCentreAgentStateLog, CallCentreAgentHelpLog and CallCentreAgent_tmp. Agents log in,
// wait, are rung, talk, wrap up, take their breaks and log out. The calls of an agent that overlap
// an earlier one leave no trace, as no agent is in two states at a time.
class AgentLog {
  public:
    // Nothing is written that happens after `now` (seconds since 1970-01-01).
    AgentLog(const std::string& folder, uint64_t seed, int64_t now);

    // The companies come one after the other, each with its days in order.
    void BeginCompany(const Company& company);
    // Takes note of what an agent has to do with a leg of the present day.
    void Add(const Leg& leg);
    // Writes what the company's agents did on the day (days since 1970-01-01).
    void EndDay(int64_t day);
    // The agents' present state, once each company's last day has ended.
    void EndCompany();
    void Finish(LoadScript& script);

  private:
    // A call as its agent sees it.
    struct Task {
        int64_t start;  // talking begins, or the agent dials
        int64_t end;
        bool fromQueue;
    };
    struct Agent {
        const Person* person = nullptr;
        std::vector<Task> tasks;  // of the present day
        const char* state = nullptr;
        int64_t since = 0;
        int reason = 0;  // while not available; 0: unknown
    };
    // A change of state, kept until the day's changes of all agents can be put in order.
    struct Change {
        int64_t time;
        const Person* person;
        const char* from;
        const char* to;
        int64_t seconds;
        int reason;
    };
    struct Pause {
        int64_t from;
        int64_t seconds;
        int reason;
    };

    void Work(Agent& agent, int64_t midnight, Random& random);
    std::vector<Pause> Pauses(int64_t midnight, Random& random) const;
    void Take(Agent& agent, const Task& task, Random& random);
    void Enter(Agent& agent, int64_t time, const char* state, int reason = 0);
    void AskForHelp(const Agent& agent, int64_t time, int64_t until);

    uint64_t seed_;
    int64_t now_;
    const Company* company_ = nullptr;
    std::vector<Agent> agents_;
    std::unordered_map<std::string, size_t> byNumber_;  // extension to place in agents_
    std::vector<Change> changes_;
    TsvFile states_;
    TsvFile help_;
    TsvFile present_;
};

}  // namespace demodata
