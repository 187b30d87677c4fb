#include "portal/report/ReportFormSearch.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "cgiFramework/LDAPDropDown.h"
#include "common/Html.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportFormTable.h"

namespace {

constexpr char kGlobalSql[] =
    "SELECT AttribValue FROM CustomerAttribute WHERE customerid='%s' AND AttribName = 'globalopt'";

constexpr char kSuggestEntities[] = "pagename=autorespond&logging=on&format=json";
constexpr char kSuggestContacts[] = "pagename=autorespond&logging=on&format=json&contactTick=on";
constexpr char kSuggestValues[] = "pagename=autorespond2&searchtype=%s";

// One of the form's two searches for an entity.
struct EntitySearch {
    const char* label;
    const char* kindLabel;
    const char* kindName;
    const char* textName;
    const char* ticksId;
    std::vector<EntityKind> kinds;  // those that the report offers
    UString kind;
    UString text;
};

constexpr struct {
    const char* name;
    UString LumoraReportFilter::*number;
} kContacts[] = {
    {"contact1", &LumoraReportFilter::contact1}, {"contact2", &LumoraReportFilter::contact2},
    {"contact3", &LumoraReportFilter::contact3}, {"contact4", &LumoraReportFilter::contact4},
    {"contact5", &LumoraReportFilter::contact5}, {"contact6", &LumoraReportFilter::contact6},
};

std::vector<EntityKind> OfferedKinds(std::span<const EntityKind> all,
                                     const LumoraReportFilter& offered) {
    std::vector<EntityKind> kinds;
    for (const EntityKind& kind : all)
        if (offered.*kind.offered) kinds.push_back(kind);
    return kinds;
}

// Criteria of the session name the entity by its own field, and not by the search.
void FindEntity(EntitySearch& search, const LumoraReportFilter& current) {
    for (const EntityKind& kind : search.kinds) {
        if (!search.kind.IsEmpty() || (current.*kind.field).IsEmpty()) continue;
        search.kind = kind.searchtype;
        search.text = current.*kind.field;
    }
}

bool IsOneOf(const char* searchtype, std::span<const EntityKind> kinds) {
    return std::any_of(kinds.begin(), kinds.end(), [&](const EntityKind& kind) {
        return strcmp(kind.searchtype, searchtype) == 0;
    });
}

void AddTicks(WebItem& cell, const EntitySearch& search, ReportFormTable& table) {
    WebDiv& row = cell.Adopt(
        new WebDiv("class=\"tickRow\" id=\"%s\" role=\"group\" aria-label=\"Offer while typing\"",
                   search.ticksId));
    for (const EntityKind& kind : search.kinds)
        table.AddCheckBox(row, kind.tick, /*ticked=*/true, kind.label);
}

WebItem& AddEntityRow(PortalContext& ctx, EntitySearch& search, const LumoraReportFilter& current,
                      ReportFormTable& table) {
    FindEntity(search, current);
    LDAPDropDownValue choices;
    for (size_t i = 0; i < search.kinds.size(); ++i)
        if (!IsOneOf(search.kinds[i].searchtype, std::span(search.kinds).first(i)))
            choices.Add(search.kinds[i].searchtype, search.kinds[i].label);

    WebItem& cell = table.AddRow(search.textName, search.label);
    WebItem& line = AddFormLine(cell);
    UString more;
    more.Format("aria-label=\"%s\"", search.kindLabel);
    table.AddList(line, search.kindName, choices, search.kind.c_str(), /*none=*/nullptr,
                  more.c_str());
    more.Format("size=\"40\" data-suggest=\"%s\" data-ticks=\"%s\" data-kind=\"%s\"",
                HtmlAttr(ctx.GetURL(kSuggestEntities)).c_str(), search.ticksId, search.kindName);
    table.AddText(line, search.textName, search.text, more.c_str());
    AddTicks(cell, search, table);
    return cell;
}

void AddFirstSearch(PortalContext& ctx, const LumoraReportFilter& offered,
                    const LumoraReportFilter& current, ReportFormTable& table) {
    EntitySearch search = {.label = "For:",
                           .kindLabel = "Kind of whom it is for",
                           .kindName = "searchtype",
                           .textName = "suggest1",
                           .ticksId = "suggest1_ticks",
                           .kinds = OfferedKinds(EntityKinds(), offered),
                           .kind = current.searchtype,
                           .text = current.suggest1};
    WebItem& cell = AddEntityRow(ctx, search, current, table);
    AddFormHint(cell, offered.mandatoryEntity ? "Type a name and choose it from the list"
                                              : "Leave this empty for all");
    table.AddProblems(cell, "searchtype");
    table.AddProblems(cell, "suggest1");
}

void AddSecondSearch(PortalContext& ctx, const LumoraReportFilter& offered,
                     const LumoraReportFilter& current, ReportFormTable& table) {
    EntitySearch search = {.label = "Show:",
                           .kindLabel = "Kind of whom it shows",
                           .kindName = "A_searchtype",
                           .textName = "A_suggest1",
                           .ticksId = "A_suggest1_ticks",
                           .kinds = OfferedKinds(SecondEntityKinds(), offered),
                           .kind = current.A_searchtype,
                           .text = current.A_suggest1};
    WebItem& cell = AddEntityRow(ctx, search, current, table);
    table.AddProblems(cell, "A_searchtype");
    table.AddProblems(cell, "A_suggest1");
}

void AddContactRow(PortalContext& ctx, const LumoraReportFilter& current, ReportFormTable& table) {
    WebItem& cell = table.AddGroupRow("contacts", "Contact:");
    WebDiv& grid = cell.Adopt(new WebDiv("class=\"contactGrid\""));
    UString more;
    more.Format("data-suggest=\"%s\"", HtmlAttr(ctx.GetURL(kSuggestContacts)).c_str());
    int place = 0;
    for (const auto& [name, number] : kContacts) {
        WebDiv& item = grid.Adopt(new WebDiv("class=\"contactItem\""));
        UString label;
        label.Format("Contact Number %d", ++place);
        AddFormLabel(item, name, label.c_str());
        table.AddText(item, name, current.*number, more.c_str());
    }
    AddFormHint(cell, "Search for up to six numbers");
    for (const auto& contact : kContacts)
        table.AddProblems(cell, contact.name);
}

}  // namespace

void AddSearchRows(PortalContext& ctx, const LumoraReportFilter& offered,
                   const LumoraReportFilter& current, ReportFormTable& table) {
    // Contacts alone have a row of their own.
    const auto kinds = EntityKinds();
    const bool hasEntities = std::any_of(kinds.begin(), kinds.end(), [&](const EntityKind& kind) {
        return offered.*kind.offered && kind.offered != &LumoraReportFilter::hasContact;
    });
    table.StartSection();
    if (hasEntities) {
        AddFirstSearch(ctx, offered, current, table);
        if (IsGlobalOffered(ctx)) {
            WebItem& cell = table.AddRow("globcb1", "Allow Global:");
            table.AddCheckBox(cell, "globcb1", IsTicked(current.globcb1),
                              "For all, without a name");
        }
    }
    if (offered.hasSecondForField) AddSecondSearch(ctx, offered, current, table);
    if (offered.hasTag)
        AddValueRow(ctx, table, "Tag:", "suggesttag", "tag", current.tagFilter.c_str(),
                    "style=\"width: 153px\"");
    if (offered.hasContact) AddContactRow(ctx, current, table);
}

bool IsGlobalOffered(PortalContext& ctx) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kGlobalSql, SqlQuoted(ctx.customerIdString)));
    return db.NextRow() && strcmp(db.Column(0), "0") != 0;
}

void AddValueRow(PortalContext& ctx, ReportFormTable& table, const char* label, const char* id,
                 const char* name, const char* value, const char* size) {
    UString more;
    more.Format("%s data-suggest=\"%s\"", size, HtmlAttr(ctx.GetURL(kSuggestValues, name)).c_str());
    WebItem& cell = table.AddRow(id, label);
    table.AddText(cell, name, value, more.c_str(), id);
    table.AddProblems(cell, name);
}
