#include "tools/demodata/Inbox.h"

#include <algorithm>
#include <string>

#include "tools/demodata/Random.h"
#include "tools/demodata/Users.h"

namespace demodata {

namespace {

constexpr int64_t kHour = 3600;
constexpr int64_t kDay = 86400;
constexpr int kOpens = 8;    // the desk answers from this hour ...
constexpr int kCloses = 18;  // ... to this one
constexpr int kMostRounds = 5;

struct InboxPlan {
    int company;
    const char* id;
    const char* name;
    const char* address;  // before the company's mail domain
    bool isPrivate;
    double share;  // of the company's conversations
};
constexpr InboxPlan kInboxes[] = {
    {1, kRestrictedInbox, "Support", "support", false, 0.45},
    {1, "inb_1b", "Sales enquiries", "sales", false, 0.30},
    {1, "inb_1c", "Orders & Returns [50% off]", "orders", false, 0.20},
    {1, "inb_1d", "Morgan's own", "morgan.manager", true, 0.05},
    {2, "inb_2a", "Claims", "claims", false, 1.0},
};

struct TagPlan {
    int company;
    const char* id;
    const char* name;
    double chance;  // that a conversation has it
};
constexpr TagPlan kTags[] = {
    {1, "tag_1a", "complaint", 0.12},     {1, "tag_1b", "urgent", 0.08},
    {1, "tag_1c", "billing", 0.20},       {1, "tag_1d", "50% off", 0.05},
    {1, "tag_1e", "<new customer>", 0.1}, {1, "tag_1f", "customer's return", 0.1},
    {2, "tag_2a", "damage", 0.5},         {2, "tag_2b", "complaint", 0.2},
};

const char* const kCustomers[] = {
    "ana.lopes@harbour.example",  "m.o'brien@carrow.example",  "einkauf@söhne.example",
    "j.smith@kingsway.example",   "deals+50%off@shop.example", "lena_lind@mobel.example",
    "accounts@redwood.example",   "tom@upton.example",         "reception@tidewell.example",
    "\"Zen\"@zenith.example",     "paul.weiss@delft.example",  "service@stanway.example",
    "priya.n@mossbank.example",   "office@harlow.example",     "w.chen@eastport.example",
    "s.el-amin@northgate.example"};

const InboxPlan* PickInbox(int company, Random& random) {
    double left = random.Unit();
    const InboxPlan* last = nullptr;
    for (const InboxPlan& inbox : kInboxes) {
        if (inbox.company != company) continue;
        last = &inbox;
        left -= inbox.share;
        if (left < 0) break;
    }
    return last;
}

// Nobody answers at night or on a Sunday: the answer comes soon after the desk opens.
int64_t InOfficeHours(int64_t time, Random& random) {
    int64_t day = time / kDay;
    if (time % kDay >= kCloses * kHour) ++day;
    if (day % 7 == 3) ++day;  // 1970-01-01 was a Thursday
    const int64_t opening = day * kDay + kOpens * kHour;
    return time >= opening ? time : opening + random.Between(60, 5400);
}

// Writes one company's conversations, message by message.
class Writer {
  public:
    Writer(const Company& company, const InboxOptions& options, TsvFile& messages)
        : company_(company),
          now_(options.now),
          random_(StreamSeed(options.seed ^ 0x1BBEC, company.id, 0)),
          team_(Teammates(company)),
          messages_(messages) {}

    void Conversation(int64_t number, int64_t start) {
        id_ = "cnv_" + std::to_string(company_.id) + "_" + std::to_string(number);
        inbox_ = PickInbox(company_.id, random_);
        customer_ = kCustomers[random_.Below(std::size(kCustomers))];
        message_ = 0;
        const Person* owner = team_[random_.Below(team_.size())];
        int64_t time = start;
        // Some are begun by the company.
        if (random_.Chance(0.08)) {
            time = InOfficeHours(time, random_);
            Write(time, owner);
            time += random_.Seconds(6 * kHour, 300);
        }
        for (int round = 0; round < kMostRounds; ++round) {
            Write(time, nullptr);
            const int64_t asked = time;
            int64_t answered = time + random_.Seconds(1.2 * kHour, 60);
            answered = InOfficeHours(answered, random_);
            if (random_.Chance(0.15)) {
                time += random_.Between(300, 7200);
                if (time < answered) Write(time, nullptr);  // the customer adds something
            }
            if (random_.Chance(0.09)) return;  // never answered
            Write(std::max(answered, asked + 60),
                  random_.Chance(0.1) ? team_[random_.Below(team_.size())] : owner);
            if (random_.Chance(0.55)) return;
            time = answered + random_.Seconds(5 * kHour, 120);
        }
    }
    const std::string& id() const { return id_; }
    Random& random() { return random_; }

  private:
    // `author` null: the customer.
    void Write(int64_t time, const Person* author) {
        ++message_;
        const int64_t milliseconds = time * 1000 + random_.Between(0, 999);
        if (time >= now_) return;
        const std::string ours = std::string(inbox_->address) + "@" + company_.mailDomain;
        const std::string copy = message_ % 4 == 0 ? ", copies@archive.example" : "";
        messages_.Text("msg_" + id_.substr(4) + "_" + std::to_string(message_));
        messages_.Number(company_.id).Text(id_).StampMs(milliseconds);
        messages_.Text(author == nullptr ? customer_ : ours);
        messages_.Text(author == nullptr ? ours + copy : customer_ + copy);
        // One who has left since is no teammate any more.
        const bool left = author != nullptr && random_.Chance(0.01);
        messages_.Text(left ? "tea_gone" : author == nullptr ? "" : TeammateId(*author));
        messages_.Text(inbox_->id).EndRow();
    }

    const Company& company_;
    int64_t now_;
    Random random_;
    std::vector<const Person*> team_;
    TsvFile& messages_;
    std::string id_;
    const InboxPlan* inbox_ = nullptr;
    std::string customer_;
    int message_ = 0;
};

struct Tagged {
    int company;
    std::string conversation;
    const char* tag;
};

std::vector<Tagged> WriteConversations(const Company& company, const InboxOptions& options,
                                       TsvFile& messages) {
    std::vector<Tagged> tagged;
    if (Teammates(company).empty()) return tagged;
    const auto wanted =
        static_cast<int64_t>(static_cast<double>(options.calls) * company.share / 25);
    const int64_t count = options.calls == 0 ? 0 : std::clamp<int64_t>(wanted, 60, 40000);
    const int64_t days = options.lastDay - options.firstDay + 1;
    Writer writer(company, options, messages);
    for (int64_t i = 0; i < count; ++i) {
        Random& random = writer.random();
        const int64_t day = options.firstDay + i * days / count;
        const double hour = 7 + 7 * (random.Unit() + random.Unit());
        writer.Conversation(i + 1, day * kDay + static_cast<int64_t>(hour * kHour));
        for (const TagPlan& tag : kTags)
            if (tag.company == company.id && random.Chance(tag.chance))
                tagged.push_back({company.id, writer.id(), tag.id});
    }
    return tagged;
}

}  // namespace

// Every fourth agent answers mail too.
std::vector<const Person*> Teammates(const Company& company) {
    std::vector<const Person*> result;
    const bool hasInbox = std::any_of(std::begin(kInboxes), std::end(kInboxes),
                                      [&](const InboxPlan& i) { return i.company == company.id; });
    if (!hasInbox) return result;
    for (const Person& person : company.people)
        if (person.agentId % 4 == 1) result.push_back(&person);
    return result;
}

std::string TeammateId(const Person& person) {
    return "tea_" + std::to_string(person.agentId);
}

void WriteInbox(const std::vector<Company>& companies, const InboxOptions& options,
                TableSet& tables) {
    tables.Table("FrontInbox", "id, customerid, name, isPrivate", [](TsvFile& file) {
        for (const InboxPlan& inbox : kInboxes)
            file.Text(inbox.id)
                .Number(inbox.company)
                .Text(inbox.name)
                .Number(inbox.isPrivate)
                .EndRow();
    });
    tables.Table("FrontTag", "id, customerid, name", [](TsvFile& file) {
        for (const TagPlan& tag : kTags)
            file.Text(tag.id).Number(tag.company).Text(tag.name).EndRow();
    });
    tables.Table("FrontTeammate", "id, customerid, firstName, lastName", [&](TsvFile& file) {
        for (const Company& company : companies)
            for (const Person* person : Teammates(company)) {
                const size_t blank = person->name.find(' ');
                file.Text(TeammateId(*person)).Number(company.id);
                file.Text(person->name.substr(0, blank));
                file.Text(person->name.substr(blank + 1)).EndRow();
            }
    });
    tables.Table("FrontSLAs", "customerid, name, responseSLA", [](TsvFile& file) {
        file.Number(1).Text("Within an hour").Number(3600).EndRow();
        file.Number(1).Text("Within four hours").Number(4 * kHour).EndRow();
        file.Number(1).Text("Next day").Number(kDay).EndRow();
        file.Number(2).Text("Within a day").Number(kDay).EndRow();
    });
    std::vector<Tagged> tagged;
    tables.Table("FrontMessage",
                 "id, customerid, convid, createdAt, fromHandle, toHandle, author, inboxid",
                 [&](TsvFile& file) {
                     for (const Company& company : companies)
                         for (Tagged& tag : WriteConversations(company, options, file))
                             tagged.push_back(std::move(tag));
                 });
    tables.Table("FrontConversationTag", "customerid, convid, tagid", [&](TsvFile& file) {
        for (const Tagged& tag : tagged)
            file.Number(tag.company).Text(tag.conversation).Text(tag.tag).EndRow();
    });
}

}  // namespace demodata
