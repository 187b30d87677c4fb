#include "tools/demodata/Company.h"

#include <cstdio>
#include <set>

#include "tools/demodata/Random.h"

namespace demodata {

namespace {

struct DepartmentPlan {
    const char* name;
    int people;
    bool queue;
};

struct CompanyPlan {
    int id;
    int parentId;
    int type;
    const char* name;
    const char* mailDomain;
    double share;
    int firstExtension;
    const char* outsidePrefix;
    std::vector<DepartmentPlan> departments;
    std::vector<const char*> firstNames;
    std::vector<const char*> lastNames;
    std::vector<const char*> specialNames;  // given to the first people of the named department
    const char* specialDepartment;
};

// Companies 1 and 2 use the same extensions and both have a "Sales": what mixes customers up
// shows at once. Names with quotes, accents, markup and per-cent signs do the same for escaping.
std::vector<CompanyPlan> Plans() {
    const std::vector<const char*> commonFirst = {
        "Adam",     "Beth",    "Callum",  "Diana",  "Edward",  "Fiona",  "Gareth",
        "Hannah",   "Ian",     "Joanna",  "Kevin",  "Laura",   "Martin", "Nadia",
        "Oliver",   "Priya",   "Quentin", "Rachel", "Stephen", "Tara",   "Umar",
        "Victoria", "William", "Yvonne",  "Zoë"};
    return {
        {1,
         0,
         0,
         "Northmoor Instruments",
         "northmoor.example",
         0.95,
         2001,
         "01632960",
         {{"Sales", 8, true},
          {"Support", 8, true},
          {"Service Desk", 7, true},
          {"Orders", 6, true},
          {"Credit Control", 6, true},
          {"Spares", 5, true},
          {"Reception", 4, false},
          {"Accounts", 9, false},
          {"Marketing", 7, false},
          {"Purchasing", 7, false},
          {"Production", 12, false},
          {"Quality", 8, false},
          {"Logistics", 9, false},
          {"Human Resources", 6, false},
          {"R&D <Labs>", 14, false},
          {"Legal", 4, false},
          {"Facilities", 8, false},
          {"Export", 7, false},
          {"Training", 9, false},
          {"Board Office", 6, false},
          {"Returns [50% off]", 5, false},
          {"People's <Desk>", 4, false}},
         commonFirst,
         {"Ashworth", "Barlow",   "Coates", "Dunmore", "Ellwood", "Farrow",  "Gresham",
          "Hartley",  "Ibbotson", "Jessop", "Kettle",  "Lomax",   "Mallory", "Naylor",
          "Openshaw", "Peverell", "Quayle", "Rudd",    "Sugden",  "Thackray"},
         {"Áine O'Brien", "Siân Pryce-Jones", "Eve </td> Marsh", "Percy 100%s Dunn",
          "Tom \"Ace\" Tate", "Jürgen Groß", "Ola [Temp] Nyström"},
         "R&D <Labs>"},
        {2,
         0,
         0,
         "Calder Logistics",
         "calder.example",
         0.03,
         2001,
         "01134960",
         {{"Sales", 8, true}, {"Dispatch", 8, false}, {"Claims", 5, false}, {"Fleet", 3, false}},
         commonFirst,
         {"Abernethy", "Balfour", "Cairns", "Drummond", "Erskine", "Farquhar", "Gillespie"},
         {"Niamh D'Arcy"},
         "Claims"},
        {3,
         0,
         1,
         "Brightwell Group",
         "brightwell.example",
         0.01,
         3001,
         "01174960",
         {{"Group Finance", 6, false}, {"Group Helpline", 6, true}},
         commonFirst,
         {"Penhaligon", "Tregenza", "Rosewarne", "Nancarrow"},
         {"Renée Trelawny"},
         "Group Finance"},
        {4,
         3,
         0,
         "Brightwell Care",
         "care.brightwell.example",
         0.005,
         4001,
         "01174961",
         {{"Care Line", 6, true}, {"Care Office", 4, false}},
         commonFirst,
         {"Boscawen", "Carlyon", "Trethewey"},
         {},
         ""},
        {5,
         3,
         0,
         "Brightwell Homes",
         "homes.brightwell.example",
         0.005,
         5001,
         "01174962",
         {{"Lettings", 6, true}, {"Repairs", 4, false}},
         commonFirst,
         {"Pascoe", "Polkinghorne", "Vivian"},
         {},
         ""},
    };
}

std::string OutsideNumber(const std::string& prefix, int extension) {
    char tail[8];
    std::snprintf(tail, sizeof tail, "%03d", extension % 1000);
    return prefix + tail;
}

// A name that nobody in the company has yet.
std::string NewName(const CompanyPlan& plan, Random& random, std::set<std::string>& taken) {
    for (;;) {
        const std::string name =
            std::string(plan.firstNames[random.Below(plan.firstNames.size())]) + " " +
            plan.lastNames[random.Below(plan.lastNames.size())];
        if (taken.insert(name).second) return name;
    }
}

// The agents' ids begin at `firstAgent`; returns the next free one.
int AddPeople(const CompanyPlan& plan, Company& company, int firstAgent) {
    Random random(static_cast<uint64_t>(plan.id));
    std::set<std::string> taken;
    int extension = plan.firstExtension;
    int agents = 0;
    for (size_t d = 0; d < plan.departments.size(); ++d) {
        Department& department = company.departments[d];
        const bool special = department.name == plan.specialDepartment;
        for (int i = 0; i < plan.departments[d].people; ++i) {
            const bool named = special && i < static_cast<int>(plan.specialNames.size());
            const std::string name =
                named ? plan.specialNames[static_cast<size_t>(i)] : NewName(plan, random, taken);
            const std::string number = std::to_string(extension);
            department.people.push_back(company.people.size());
            company.people.push_back({name, number, OutsideNumber(plan.outsidePrefix, extension),
                                      MakeGuid(company.name + "/user/" + number), d,
                                      department.queue ? firstAgent + agents++ : 0});
            ++extension;
        }
    }
    return firstAgent + agents;
}

void AddDepartments(const CompanyPlan& plan, Company& company) {
    int number = plan.firstExtension + 5000;
    for (const DepartmentPlan& d : plan.departments) {
        company.departments.push_back({d.name,
                                       std::to_string(number),
                                       OutsideNumber(plan.outsidePrefix, number + 800),
                                       MakeGuid(company.name + "/department/" + d.name),
                                       d.queue,
                                       {}});
        ++number;
    }
}

void AddOutside(Company& company) {
    company.trunks = {
        {"cn=SIP 1,cn=Gateway A,cn=Modules", "Public network", false},
        {"cn=SIP 2,cn=Gateway A,cn=Modules", "Public network", false},
        {"cn=ISDN 1,cn=Gateway B,cn=Modules", "Public network, standby", false},
        {"cn=Tie 1,cn=Gateway B,cn=Modules", "Tie line to the warehouse (internal)", true},
    };
    const char* const names[] = {"O'Neil & Sons",    "Carrow Supplies",  "Delft\\Haven Freight",
                                 "Harlow Plastics",  "Kingsway Garage",  "Lindqvist Möbel",
                                 "Moss Street Bank", "Redwood Catering", "Stanway Print",
                                 "Tidewell Dental",  "Upton Couriers",   "\"Zenith\" Cleaning",
                                 "Müller & Söhne",   "\"50% off\" shop", "<Office> Direct",
                                 "[Depot] Nord",     "Chloé's Café"};
    int number = 100;
    for (const char* name : names) {
        company.contacts.push_back({name, "0207946" + std::to_string(number * 10 + company.id)});
        number += 7;
    }
}

}  // namespace

std::string MakeGuid(const std::string& words) {
    uint64_t hash = 0xCBF29CE484222325u;  // FNV-1a
    for (const char c : words)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    Random random(hash);
    const uint64_t high = random.Next();
    const uint64_t low = random.Next();
    char text[40];
    std::snprintf(text, sizeof text, "%08x-%04x-4%03x-a%03x-%012llx",
                  static_cast<unsigned>(high >> 32), static_cast<unsigned>(high >> 16 & 0xFFFF),
                  static_cast<unsigned>(high & 0xFFF), static_cast<unsigned>(low >> 52),
                  static_cast<unsigned long long>(low & 0xFFFFFFFFFFFF));
    return text;
}

std::vector<Company> MakeCompanies() {
    std::vector<Company> companies;
    int nextAgent = 1;
    for (const CompanyPlan& plan : Plans()) {
        Company company{plan.id,
                        plan.parentId,
                        plan.type,
                        plan.name,
                        plan.mailDomain,
                        MakeGuid(plan.name),
                        plan.share,
                        {},
                        {},
                        {},
                        {}};
        AddDepartments(plan, company);
        nextAgent = AddPeople(plan, company, nextAgent);
        AddOutside(company);
        companies.push_back(std::move(company));
    }
    return companies;
}

}  // namespace demodata
