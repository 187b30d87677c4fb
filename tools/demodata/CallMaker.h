// Makes one call of a company at a time, of a kind and an outcome drawn by chance.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/demodata/Company.h"
#include "tools/demodata/Leg.h"
#include "tools/demodata/Random.h"

namespace demodata {

class CallMaker {
  public:
    // Borrows both for its life. Legs are numbered from `nextId`, which it advances.
    CallMaker(const Company& company, int64_t& nextId);

    // The legs of one call that starts at `start`, in the order of their beginning; valid until
    // the next call. The first is the one that no other leg's transferTo names.
    const std::vector<Leg>& Make(int64_t start, Random& random);

  private:
    // Somebody who hung up is called back, or tries again.
    struct FollowUp {
        int64_t due;
        bool calledBack;
        Party caller;
        const Department* department;
    };

    Leg& NewLeg(int64_t start);
    bool MakeFollowUp(int64_t start, Random& random);
    void PlanFollowUp(const Department& department, Random& random);
    void InboundTo(const Department& department, Random& random);
    void Inbound(int64_t start, Random& random);
    void Outbound(int64_t start, Random& random);
    void Dial(Leg& leg, Random& random);
    void Internal(int64_t start, Random& random);
    void TieLine(int64_t start, Random& random);
    void CollectVoicemail(int64_t start, Random& random);

    void ToDepartment(const Department& department, Random& random);
    void ToPerson(const Person& person, Random& random);
    void Announce(const Leg& caller);
    void SystemLeg(const Leg& of, int64_t start, TransferCall transfer, const char* service);
    void MaybeTransfer(const Person& from, Random& random, double probability);
    void TransferTo(const Person& person, Random& random);
    void DivertOutside(const Person& person, Random& random);

    const Person& AnyPerson(Random& random) const;
    const Person& Colleague(const Person& of, Random& random) const;
    const Trunk& OutsideTrunk(Random& random) const;
    Party Outside(Random& random) const;

    const Company& company_;
    int64_t& nextId_;
    std::vector<const Department*> queues_;
    std::vector<const Department*> others_;
    const Trunk* tie_ = nullptr;
    std::vector<FollowUp> followUps_;
    std::vector<Leg> legs_;
};

}  // namespace demodata
