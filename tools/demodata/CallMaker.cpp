#include "tools/demodata/CallMaker.h"

#include <cstddef>
#include <cstdio>

namespace demodata {

namespace {

constexpr char kVoicemail[] = "!LeaveVoicemail";
constexpr char kVoicemailName[] = "!Voicemail";
constexpr int kFirstAnnouncement = 30;  // seconds of waiting
constexpr int kSecondAnnouncement = 60;
constexpr int kMostLegs = 3;  // an answered call is passed on twice at most

constexpr int64_t kFollowUpPatience = 4 * 3600;  // later than this nobody calls again
constexpr size_t kRegulars = 40;                 // outside numbers without a name that call often

struct Tariff {
    double share;
    const char* prefix;  // none begins with another one
    int64_t connection;  // ten-thousandths
    int64_t perMinute;
};
constexpr Tariff kTariffs[] = {
    {0.38, "01632", 0, 120},     {0.23, "0121", 0, 180},      {0.22, "077009", 150, 1050},
    {0.05, "00491", 250, 2450},  {0.03, "00331", 250, 2200},  {0.02, "001212", 300, 1900},
    {0.02, "003531", 200, 1500}, {0.01, "009198", 500, 4800}, {0.02, "0845", 0, 500},
    {0.02, "0800", 0, 0},        {0.0, "020", 0, 150},
};

Party Inside(const Person& person) {
    return {person.number, person.name, person.number, {}, false};
}

Party Inside(const Department& department) {
    return {department.number, department.name, department.number, {}, false};
}

const Tariff& PickTariff(Random& random) {
    double left = random.Unit();
    for (const Tariff& tariff : kTariffs) {
        left -= tariff.share;
        if (left < 0) return tariff;
    }
    return kTariffs[0];
}

int64_t PriceOf(const std::string& number, int seconds) {
    for (const Tariff& tariff : kTariffs)
        if (number.rfind(tariff.prefix, 0) == 0)
            return tariff.connection + tariff.perMinute * seconds / 60;
    return 0;
}

std::string OutsideNumber(const char* prefix, Random& random) {
    char text[24];
    std::snprintf(text, sizeof text, "%s%06zu", prefix, random.Below(1000000));
    return text;
}

}  // namespace

CallMaker::CallMaker(const Company& company, int64_t& nextId) : company_(company), nextId_(nextId) {
    for (const Department& department : company.departments)
        (department.queue ? queues_ : others_).push_back(&department);
    for (const Trunk& trunk : company.trunks)
        if (trunk.internal) tie_ = &trunk;
}

const std::vector<Leg>& CallMaker::Make(int64_t start, Random& random) {
    legs_.clear();
    if (MakeFollowUp(start, random)) return legs_;
    const double kind = random.Unit();
    if (kind < 0.47)
        Inbound(start, random);
    else if (kind < 0.80)
        Outbound(start, random);
    else if (kind < 0.97)
        Internal(start, random);
    else if (kind < 0.99)
        TieLine(start, random);
    else
        CollectVoicemail(start, random);
    return legs_;
}

Leg& CallMaker::NewLeg(int64_t start) {
    Leg& leg = legs_.emplace_back();
    leg.id = nextId_++;
    leg.start = start;
    return leg;
}

const Person& CallMaker::AnyPerson(Random& random) const {
    return company_.people[random.Below(company_.people.size())];
}

const Person& CallMaker::Colleague(const Person& of, Random& random) const {
    const std::vector<size_t>& near = company_.departments[of.department].people;
    for (;;) {
        const Person& person = random.Chance(0.5) ? company_.people[near[random.Below(near.size())]]
                                                  : AnyPerson(random);
        if (&person != &of) return person;
    }
}

const Trunk& CallMaker::OutsideTrunk(Random& random) const {
    for (;;) {
        const Trunk& trunk = company_.trunks[random.Below(company_.trunks.size())];
        if (!trunk.internal) return trunk;
    }
}

Party CallMaker::Outside(Random& random) const {
    Party party;
    party.trunk = OutsideTrunk(random).dn;
    if (random.Chance(0.4)) {
        const auto& contact = company_.contacts[random.Below(company_.contacts.size())];
        party.name = contact[0];
        party.number = contact[1];
    } else if (random.Chance(0.15)) {
        Random regular(random.Below(kRegulars) * 8 + static_cast<size_t>(company_.id));
        party.number = OutsideNumber(PickTariff(regular).prefix, regular);
    } else {
        party.number = OutsideNumber(PickTariff(random).prefix, random);
    }
    return party;
}

bool CallMaker::MakeFollowUp(int64_t start, Random& random) {
    for (size_t i = 0; i < followUps_.size(); ++i) {
        if (followUps_[i].due > start) continue;
        const FollowUp followUp = followUps_[i];
        followUps_.erase(followUps_.begin() + static_cast<std::ptrdiff_t>(i));
        if (start - followUp.due > kFollowUpPatience) {
            --i;
            continue;
        }
        Leg& leg = NewLeg(start);
        if (!followUp.calledBack) {
            leg.a = followUp.caller;
            InboundTo(*followUp.department, random);
            return true;
        }
        const std::vector<size_t>& people = followUp.department->people;
        leg.a = Inside(company_.people[people[random.Below(people.size())]]);
        leg.costCentre = followUp.department->name;
        leg.b = followUp.caller;
        Dial(leg, random);
        return true;
    }
    return false;
}

// The caller of the newest leg has hung up.
void CallMaker::PlanFollowUp(const Department& department, Random& random) {
    const Leg& leg = legs_.back();
    if (leg.a.trunk.empty()) return;
    const double what = random.Unit();
    if (what < 0.40)
        followUps_.push_back({leg.End() + random.Between(300, 5400), true, leg.a, &department});
    else if (what < 0.65)
        followUps_.push_back({leg.End() + random.Between(60, 1200), false, leg.a, &department});
}

void CallMaker::InboundTo(const Department& department, Random& random) {
    legs_.back().ddi = department.ddi;
    legs_.back().costCentre = department.name;
    ToDepartment(department, random);
}

void CallMaker::Inbound(int64_t start, Random& random) {
    Leg& leg = NewLeg(start);
    leg.a = Outside(random);
    const double where = random.Unit();
    if (where < 0.65) {
        const auto& choice = where < 0.55 || others_.empty() ? queues_ : others_;
        InboundTo(*choice[random.Below(choice.size())], random);
    } else {
        const Person& person = AnyPerson(random);
        leg.ddi = person.ddi;
        leg.costCentre = company_.departments[person.department].name;
        ToPerson(person, random);
    }
}

void CallMaker::Internal(int64_t start, Random& random) {
    const Person& caller = AnyPerson(random);
    Leg& leg = NewLeg(start);
    leg.a = Inside(caller);
    leg.costCentre = company_.departments[caller.department].name;
    if (random.Chance(0.12))
        ToDepartment(company_.departments[random.Below(company_.departments.size())], random);
    else
        ToPerson(Colleague(caller, random), random);
}

void CallMaker::Outbound(int64_t start, Random& random) {
    const Person& caller = AnyPerson(random);
    Leg& leg = NewLeg(start);
    leg.a = Inside(caller);
    leg.costCentre = company_.departments[caller.department].name;
    leg.b = Outside(random);
    Dial(leg, random);
}

// Calls the outside party b of a leg.
void CallMaker::Dial(Leg& leg, Random& random) {
    leg.b.out = true;
    if (random.Chance(0.15)) leg.accountCode = "P" + std::to_string(1001 + random.Below(20));
    leg.ringing = random.Seconds(12, 3);
    if (!random.Chance(0.8)) return;
    leg.Answer(leg.b.number, leg.b.name, leg.ringing, random.Seconds(170, 4));
    leg.cost = PriceOf(leg.b.number, leg.talking);
}

// The warehouse has a switch of its own behind a tie line; calls over it cost nothing.
void CallMaker::TieLine(int64_t start, Random& random) {
    const Person& person = AnyPerson(random);
    Leg& leg = NewLeg(start);
    leg.costCentre = company_.departments[person.department].name;
    const Party warehouse{"55" + std::to_string(10 + random.Below(20)), "Warehouse", "", tie_->dn,
                          false};
    if (random.Chance(0.5)) {
        leg.a = warehouse;
        ToPerson(person, random);
        return;
    }
    leg.a = Inside(person);
    leg.b = warehouse;
    leg.b.out = true;
    leg.ringing = random.Seconds(8, 2);
    if (random.Chance(0.85))
        leg.Answer(leg.b.number, leg.b.name, leg.ringing, random.Seconds(90, 3));
}

void CallMaker::CollectVoicemail(int64_t start, Random& random) {
    const Person& person = AnyPerson(random);
    Leg& leg = NewLeg(start);
    leg.a = Inside(person);
    leg.b = {"7999", "Voicemail", "7999", {}, false};
    leg.costCentre = company_.departments[person.department].name;
    leg.Answer("!CollectVoicemail", kVoicemailName, 1, random.Seconds(45, 5));
}

void CallMaker::ToDepartment(const Department& department, Random& random) {
    Leg& leg = legs_.back();
    leg.b = Inside(department);
    const double outcome = random.Unit();
    if (outcome < 0.10) {
        leg.ringing = random.Seconds(35, 2);
        PlanFollowUp(department, random);
        const Leg caller = leg;  // copied: new legs move the list
        Announce(caller);
        return;
    }
    const int waiting = random.Seconds(20, 2);
    if (outcome < 0.15) {
        leg.Service(kVoicemail, kVoicemailName, waiting + random.Seconds(25, 4));
        return;
    }
    const Person& agent =
        company_.people[department.people[random.Below(department.people.size())]];
    leg.Answer(agent.number, agent.name, waiting, random.Seconds(190, 5));
    MaybeTransfer(agent, random, 0.12);
    const Leg first = legs_.front();  // copied: new legs move the list
    Announce(first);
    if (random.Chance(0.02)) SystemLeg(first, first.End(), kRecording, "!LeaveRecording");
}

void CallMaker::ToPerson(const Person& person, Random& random) {
    Leg& leg = legs_.back();
    leg.b = Inside(person);
    const double outcome = random.Unit();
    if (outcome < 0.05) {
        // Diverted at once, before the telephone rings.
        leg.ringing = random.Between(0, 1);
        if (outcome < 0.02 && !leg.a.trunk.empty() && leg.a.trunk != tie_->dn)
            DivertOutside(person, random);
        else
            TransferTo(Colleague(person, random), random);
    } else if (outcome < 0.13) {
        leg.ringing = random.Seconds(18, 2);
    } else if (outcome < 0.27) {
        leg.Service(kVoicemail, kVoicemailName, 20 + random.Seconds(25, 4));
    } else {
        leg.Answer(person.number, person.name, random.Seconds(8, 2), random.Seconds(150, 3));
        MaybeTransfer(person, random, 0.06);
    }
}

void CallMaker::MaybeTransfer(const Person& from, Random& random, double probability) {
    if (legs_.size() < kMostLegs && random.Chance(probability))
        TransferTo(Colleague(from, random), random);
}

// Continues the newest leg's call at another telephone.
void CallMaker::TransferTo(const Person& person, Random& random) {
    const size_t from = legs_.size() - 1;
    NewLeg(legs_[from].End());
    Leg& previous = legs_[from];
    Leg& leg = legs_.back();
    previous.transferTo = leg.id;
    if (previous.transfer == kPlain) previous.transfer = kTransferredAway;
    leg.transfer = kReceived;
    leg.a = previous.a;
    leg.ddi = previous.ddi;
    leg.b = Inside(person);
    leg.costCentre = company_.departments[person.department].name;
    const double outcome = random.Unit();
    if (outcome < 0.06) {
        leg.ringing = random.Seconds(15, 2);
    } else if (outcome < 0.12) {
        leg.Service(kVoicemail, kVoicemailName, 20 + random.Seconds(25, 4));
    } else {
        leg.Answer(person.number, person.name, random.Seconds(7, 2), random.Seconds(160, 5));
        MaybeTransfer(person, random, 0.15);
    }
}

// The caller came from outside and leaves again through another trunk, to a mobile telephone.
void CallMaker::DivertOutside(const Person& person, Random& random) {
    NewLeg(legs_[0].End());
    Leg& previous = legs_[0];
    Leg& leg = legs_[1];
    previous.transferTo = leg.id;
    previous.transfer = kTransferredAway;
    leg.transfer = kReceived;
    leg.a = previous.a;
    leg.ddi = previous.ddi;
    leg.costCentre = previous.costCentre;
    const bool abroad = person.department % 5 == 0;
    leg.b.number = (abroad ? "0049170" : "07700900") + person.number;
    leg.b.out = true;
    do
        leg.b.trunk = OutsideTrunk(random).dn;
    while (leg.b.trunk == leg.a.trunk);
    leg.ringing = random.Seconds(10, 4);
    if (!random.Chance(0.75)) return;
    leg.Answer(leg.b.number, leg.b.name, leg.ringing, random.Seconds(140, 4));
    leg.cost = PriceOf(leg.b.number, leg.talking);
}

// The telephone system's own legs while a caller waits for a department.
void CallMaker::Announce(const Leg& caller) {
    if (caller.ringing > kFirstAnnouncement)
        SystemLeg(caller, caller.start + 20, kAnnouncement, "!AnnouncementInitial");
    if (caller.ringing > kSecondAnnouncement)
        SystemLeg(caller, caller.start + 50, kAnnouncementRepeat, "!AnnouncementRepeat");
}

void CallMaker::SystemLeg(const Leg& of, int64_t start, TransferCall transfer,
                          const char* service) {
    Leg& leg = NewLeg(start);
    leg.a = of.a;
    leg.b = of.b;
    leg.ddi = of.ddi;
    leg.costCentre = of.costCentre;
    leg.transfer = transfer;
    leg.Service(service, "!System", 8);
}

}  // namespace demodata
