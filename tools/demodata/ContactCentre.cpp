#include "tools/demodata/ContactCentre.h"

#include <string>

namespace demodata {

namespace {

void WriteQueues(const std::vector<Company>& companies, TableSet& tables) {
    tables.Table("CallCentreQueue", "customerid, queueName, queueNumber, queueGuid, priority",
                 [&](TsvFile& file) {
                     for (const Company& c : companies)
                         for (const Department& d : c.departments) {
                             if (!d.queue) continue;
                             file.Number(c.id).Text(d.name).Text(d.number).Text(d.guid).Number(5);
                             file.EndRow();
                         }
                 });
    tables.Table("CallCentreAgent",
                 "id, customerid, agentName, agentNumber, agentGuid, blacklistSeconds, NAProfile",
                 [&](TsvFile& file) {
                     for (const Company& c : companies)
                         for (const Person& p : c.people) {
                             if (p.agentId == 0) continue;
                             file.Number(p.agentId).Number(c.id).Text(p.name).Text(p.number);
                             file.Text(p.guid).Number(60).Number(c.id).EndRow();
                         }
                 });
}

void WriteReasons(const std::vector<Company>& companies, TableSet& tables) {
    const std::array<const char*, kReasons> names = {"Break", "Lunch", "Team meeting", "Training",
                                                     "Paperwork & calls back"};
    tables.Table("CallCentreNAReasonCode", "id, customerid, name, `order`", [&](TsvFile& file) {
        for (const Company& c : companies)
            for (int r = 0; r < kReasons; ++r) {
                file.Number(ReasonId(c, static_cast<NotAvailable>(r))).Number(c.id);
                file.Text(names[static_cast<size_t>(r)]).Number(r + 1).EndRow();
            }
    });
    // One profile a company, of its id, with every reason.
    tables.Table("CallCentreNAProfile", "id, customerid, name", [&](TsvFile& file) {
        for (const Company& c : companies)
            file.Number(c.id).Number(c.id).Text("Everybody").EndRow();
    });
    tables.Table("CallCentreNAProfileMember", "profile, naid, customerid", [&](TsvFile& file) {
        for (const Company& c : companies)
            for (int r = 0; r < kReasons; ++r) {
                file.Number(c.id).Number(ReasonId(c, static_cast<NotAvailable>(r)));
                file.Number(c.id).EndRow();
            }
    });
}

void WriteCompletionCodes(TableSet& tables) {
    const struct {
        int id;
        int parent;  // 0: at the top
        bool folder;
        const char* name;
    } codes[] = {
        {1, 0, true, "Sales"},         {2, 1, false, "Order taken"},
        {3, 1, false, "Quote sent"},   {4, 1, false, "50% deposit promised"},
        {5, 0, true, "Service"},       {6, 5, false, "Solved at once"},
        {7, 5, false, "Call back"},    {8, 5, false, "Customer's own mistake"},
        {9, 0, false, "Wrong number"},
    };
    tables.Table("CallCentreCompletionCode", "id, customerid, name, `order`, parent, folder",
                 [&](TsvFile& file) {
                     for (const auto& code : codes) {
                         file.Number(code.id).Number(1).Text(code.name).Number(code.id);
                         file.Number(code.parent).Number(code.folder).EndRow();
                     }
                 });
    // The first company's six queues have the ids 1 to 6.
    tables.Table("CallCentreQueueCompletionCode", "customerid, queueid, codeid",
                 [&](TsvFile& file) {
                     for (int queue = 1; queue <= 6; ++queue)
                         for (const auto& code : codes)
                             if (!code.folder)
                                 file.Number(1).Number(queue).Number(code.id).EndRow();
                 });
}

void WriteServiceLevels(TableSet& tables) {
    const struct {
        int customer;
        const char* name;
        int answer;  // seconds
        int handle;
    } levels[] = {{1, "Standard: 20 seconds", 20, 300},
                  {1, "Relaxed: 60 seconds", 60, 600},
                  {1, "Key accounts: 10 seconds", 10, 180},
                  {2, "Standard: 20 seconds", 20, 300},
                  {3, "Helpline: 30 seconds", 30, 600}};
    tables.Table("CallCentreSLAs", "customerid, name, answerSLA, handleSLA", [&](TsvFile& file) {
        for (const auto& level : levels)
            file.Number(level.customer)
                .Text(level.name)
                .Number(level.answer)
                .Number(level.handle)
                .EndRow();
    });
}

}  // namespace

void WriteContactCentre(const std::vector<Company>& companies, TableSet& tables) {
    WriteQueues(companies, tables);
    WriteReasons(companies, tables);
    WriteCompletionCodes(tables);
    WriteServiceLevels(tables);
}

}  // namespace demodata
