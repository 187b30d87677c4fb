#include "tools/demodata/PortalTables.h"

#include <sys/stat.h>

#include <algorithm>
#include <stdexcept>

#include "tools/demodata/Inbox.h"
#include "tools/demodata/Users.h"

namespace demodata {

namespace {

int UserId(const char* name) {
    for (const PortalUser& user : PortalUsers())
        if (user.name == name) return user.id;
    throw std::logic_error("no such demo user");
}

bool HasCallServer(const Company& company) {
    return company.parentId == 0;
}

template <size_t N>
bool IsOneOf(const std::array<const char*, N>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

void WriteCustomers(const std::vector<Company>& companies, TableSet& tables) {
    tables.Table("Customer", "id, SubscriberId, CustomerName, CustomerType", [&](TsvFile& file) {
        for (const Company& c : companies)
            file.Number(c.id).Number(c.parentId).Text(c.name).Number(c.type).EndRow();
    });
    // A call server has its company's id, so that the host names below can say it.
    tables.Table("VirtualCallServer",
                 "id, customerid, primaryLDAPServer, HostName, emailsourceaddr",
                 [&](TsvFile& file) {
                     for (const Company& c : companies) {
                         if (!HasCallServer(c)) continue;
                         file.Number(c.id).Number(c.id).Text("127.0.0.1");
                         file.Text("pbx" + std::to_string(c.id)).Text(c.mailDomain).EndRow();
                     }
                 });
    tables.Table("VirtualHost", "serverName, VirtualCallServerid", [](TsvFile& file) {
        file.Text("127.0.0.1").Number(1).EndRow();
        file.Text("localhost").Number(1).EndRow();
        file.Text("two.localhost").Number(2).EndRow();
        file.Text("three.localhost").Number(3).EndRow();
    });
    tables.Table("CustomerAttribute", "CustomerId, AttribName, AttribValue", [](TsvFile& file) {
        const struct {
            int customer;
            const char* name;
            const char* value;
        } rows[] = {
            {1, "startday", "1"},  {1, "weeklength", "5"}, {1, "shiftlength", "7.5"},
            {1, "markup", "10"},   {1, "vatrate", "20"},   {1, "currency", "£"},
            {1, "globalopt", "1"}, {2, "startday", "7"},   {2, "weeklength", "7"},
            {2, "vatrate", "23"},  {2, "currency", "€"},   {2, "globalopt", "0"},
            {3, "startday", "1"},  {3, "currency", "£"},   {3, "shiftlength", "8"},
        };
        for (const auto& row : rows)
            file.Number(row.customer).Text(row.name).Text(row.value).EndRow();
    });
}

void WriteUsers(const std::vector<Company>& companies, TableSet& tables) {
    tables.Table("CustomerContact", "id, customerid, username, passwordHash, fullName, email",
                 [&](TsvFile& file) {
                     for (const PortalUser& user : PortalUsers()) {
                         const Company& company =
                             companies[static_cast<size_t>(user.companyId - 1)];
                         file.Number(user.id).Number(user.companyId).Text(user.name);
                         file.Text(user.PasswordHash()).Text(user.fullName);
                         file.Text(user.name + "@" + company.mailDomain).EndRow();
                     }
                 });
    tables.Table("CustomerContactAttrib", "userid, attribname, attribvalue", [](TsvFile& file) {
        for (const PortalUser& user : PortalUsers())
            for (const auto& attribute : user.attributes)
                file.Number(user.id).Text(attribute[0]).Text(attribute[1]).EndRow();
    });
    tables.Table("CustomerUserRight", "customerid, guid, rightid", [](TsvFile& file) {
        for (const PortalUser& user : PortalUsers())
            for (const int right : user.rights)
                file.Number(user.companyId).Number(user.id).Number(right).EndRow();
    });
}

void WritePermissions(const Company& company, TableSet& tables) {
    const int restricted = UserId("restricted");
    const int supervisor = UserId("supervisor");
    tables.Table("CallLogPermissions",
                 "contactid, customerid, type, entityNumber, logging, "
                 "queue, agent",
                 [&](TsvFile& file) {
                     const auto add = [&](int contact, const char* type, const std::string& number,
                                          std::array<int, 3> flags) {
                         file.Number(contact).Number(company.id).Text(type).Text(number);
                         file.Number(flags[0]).Number(flags[1]).Number(flags[2]).EndRow();
                     };
                     for (const Department& department : company.departments) {
                         const bool seen = IsOneOf(kRestrictedDepartments, department.name);
                         const bool managed = IsOneOf(kSupervisedQueues, department.name);
                         if (seen) add(restricted, "Department", department.number, {1, 0, 0});
                         if (managed) add(supervisor, "Department", department.number, {0, 1, 0});
                         for (const size_t index : department.people) {
                             const Person& person = company.people[index];
                             if (seen) add(restricted, "User", person.number, {1, 0, 0});
                             if (managed) add(supervisor, "User", person.number, {0, 0, 1});
                         }
                     }
                     add(restricted, "Inbox", kRestrictedInbox, {1, 0, 0});
                     const std::vector<const Person*> teammates = Teammates(company);
                     for (size_t i = 0; i < kRestrictedTeammates; ++i)
                         add(restricted, "Teammate", TeammateId(*teammates.at(i)), {1, 0, 0});
                 });
}

// What the beginnings of national numbers stand for.
void WritePrefixes(const std::vector<Company>& companies, TableSet& tables) {
    const std::array<std::array<const char*, 2>, 9> prefixes = {{{"01", "National"},
                                                                 {"02", "National"},
                                                                 {"01632", "Local"},
                                                                 {"020", "London"},
                                                                 {"03", "Non-geographic"},
                                                                 {"07", "Mobile"},
                                                                 {"080", "Freephone"},
                                                                 {"084", "Special rate"},
                                                                 {"55", "Warehouse"}}};
    tables.Table(
        "DiallingPrefix", "customerid, prefix, name",
        [&](TsvFile& file) {
            for (const Company& c : companies)
                for (const auto& prefix : prefixes)
                    file.Number(c.id).Plain(prefix[0]).Text(prefix[1]).EndRow();
        },
        /*replaced=*/"customerid <> 0");
}

// A reporting group's members by name: departments, users or other groups.
struct GroupPlan {
    int id;
    int owner;  // a portal user's id; 0: everyone's
    const char* name;
    char type;  // D, U or G
    std::vector<const char*> members;
};

void WriteGroups(const Company& company, TableSet& tables) {
    const std::vector<GroupPlan> groups = {
        {1, 0, "Front Office", 'D', {"Sales", "Support", "Orders", "Reception"}},
        {2, 0, "Back Office", 'D', {"Accounts", "Legal", "People's <Desk>"}},
        {3, 0, "Whole House [all]", 'G', {"Front Office", "Back Office"}},
        {4, UserId("manager"), "Morgan's people", 'U', {"Áine O'Brien", "Percy 100%s Dunn"}},
        {5, UserId("admin"), "Alex's people", 'U', {"Eve </td> Marsh"}},
        {6, 0, "Nobody yet", 'U', {}},
    };
    tables.Table("CallLogGroup", "group_id, group_name, customer_id, contactid",
                 [&](TsvFile& file) {
                     for (const GroupPlan& group : groups) {
                         file.Number(group.id).Text(group.name).Number(company.id);
                         file.Number(group.owner).EndRow();
                     }
                 });
    tables.Table("CallLogGroupMembers", "group_id, member_name, member_number, guid, type",
                 [&](TsvFile& file) {
                     const auto add = [&](const GroupPlan& group, const std::string& name,
                                          const std::string& number, const std::string& guid) {
                         file.Number(group.id).Text(name).Text(number).Text(guid);
                         file.Plain({&group.type, 1}).EndRow();
                     };
                     for (const GroupPlan& group : groups)
                         for (const std::string member : group.members) {
                             if (group.type == 'G') add(group, member, "", "");
                             for (const Department& d : company.departments)
                                 if (group.type == 'D' && d.name == member)
                                     add(group, d.name, d.number, d.guid);
                             for (const Person& p : company.people)
                                 if (group.type == 'U' && p.name == member)
                                     add(group, p.name, p.number, p.guid);
                         }
                 });
}

void WriteSavedReports(const Company& company, TableSet& tables) {
    const int manager = UserId("manager");
    const struct {
        const char* name;
        const char* url;
    } saved[] = {
        {"Last month by department",
         "report=callsbydept&reportPeriod=lastmonth&submit=Generate%20Report"},
        {"Sales & Support: this week's calls, 9 to 5",
         "report=callsbyday&reportPeriod=thisweek&begintime=0900&endtime=1700&searchtype=dept"
         "&suggest1=Sales&submit=Generate%20Report"},
    };
    tables.Table("CallReportQuickReport", "customerId, ContactId, url, name", [&](TsvFile& file) {
        for (const auto& report : saved)
            file.Number(company.id).Number(manager).Text(report.url).Text(report.name).EndRow();
    });
}

void WriteDirectory(const std::vector<Company>& companies, TableSet& tables) {
    constexpr char kColumns[] = "GUID, customerid, cn, telephoneNumber, _company";
    tables.Table("LDAPCompanies", "GUID, customerid, cn", [&](TsvFile& file) {
        for (const Company& c : companies)
            file.Text(c.guid).Number(c.id).Text(c.name).EndRow();
    });
    tables.Table("LDAPDepartments", kColumns, [&](TsvFile& file) {
        for (const Company& c : companies)
            for (const Department& d : c.departments)
                file.Text(d.guid).Number(c.id).Text(d.name).Text(d.number).Text(c.guid).EndRow();
    });
    tables.Table("LDAPUsers", kColumns, [&](TsvFile& file) {
        for (const Company& c : companies)
            for (const Person& p : c.people)
                file.Text(p.guid).Number(c.id).Text(p.name).Text(p.number).Text(c.guid).EndRow();
    });
    tables.Table("LDAPTrunks", "customerId, dn, description", [&](TsvFile& file) {
        for (const Company& c : companies)
            for (const Trunk& t : c.trunks)
                file.Number(c.id).Text(t.dn).Text(t.description).EndRow();
    });
}

}  // namespace

void WritePortalTables(const std::vector<Company>& companies, const std::string& folder,
                       LoadScript& script) {
    TableSet tables(folder, script);
    WriteCustomers(companies, tables);
    WriteUsers(companies, tables);
    WritePermissions(companies.front(), tables);
    WriteDirectory(companies, tables);
    WritePrefixes(companies, tables);
    WriteGroups(companies.front(), tables);
    WriteSavedReports(companies.front(), tables);

    const mode_t before = umask(0077);
    TsvFile users(folder, "demo-users");
    umask(before);
    for (const PortalUser& user : PortalUsers())
        users.Text(user.name).Text(user.Password()).Text(user.purpose).EndRow();
    users.Finish();
}

}  // namespace demodata
