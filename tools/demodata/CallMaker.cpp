#include "tools/demodata/CallMaker.h"

#include <cstdio>

namespace demodata {

namespace {

constexpr char kVoicemail[] = "!LeaveVoicemail";
constexpr char kVoicemailName[] = "!Voicemail";
constexpr int kFirstAnnouncement = 30;  // seconds of waiting
constexpr int kSecondAnnouncement = 60;
constexpr int kMostLegs = 3;  // an answered call is passed on twice at most

struct Tariff {
    double share;
    const char* prefix;
    int64_t connection;  // ten-thousandths
    int64_t perMinute;
};
constexpr Tariff kTariffs[] = {
    {0.40, "01632", 0, 120},    {0.25, "0121", 0, 180}, {0.25, "077009", 150, 1050},
    {0.06, "00491", 250, 2450}, {0.04, "0800", 0, 0},
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
    } else {
        party.number = OutsideNumber(PickTariff(random).prefix, random);
    }
    return party;
}

void CallMaker::Inbound(int64_t start, Random& random) {
    Leg& leg = NewLeg(start);
    leg.a = Outside(random);
    const double where = random.Unit();
    if (where < 0.65) {
        const auto& choice = where < 0.55 || others_.empty() ? queues_ : others_;
        const Department& department = *choice[random.Below(choice.size())];
        leg.ddi = department.ddi;
        leg.costCentre = department.name;
        ToDepartment(department, random);
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
    const Tariff& tariff = PickTariff(random);
    leg.b = Outside(random);
    leg.b.out = true;
    if (leg.b.name.empty()) leg.b.number = OutsideNumber(tariff.prefix, random);
    if (random.Chance(0.15)) leg.accountCode = "P" + std::to_string(1001 + random.Below(20));
    leg.ringing = random.Seconds(12, 3);
    if (!random.Chance(0.8)) return;
    leg.Answer(leg.b.number, leg.b.name, leg.ringing, random.Seconds(170, 4));
    leg.cost = tariff.connection + tariff.perMinute * leg.talking / 60;
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
    if (outcome < 0.03) {
        // Diverted at once, before the telephone rings.
        leg.ringing = random.Between(0, 1);
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
