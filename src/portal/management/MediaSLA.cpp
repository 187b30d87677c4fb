#include "portal/management/MediaSLA.h"

#include "portal/Dispatch.h"
#include "portal/context/ManagerContext.h"
#include "portal/theme/ListPage.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr int kRestrictedUser = 8;
constexpr int kConfigureCallCentre = 32;

constexpr char kListTitle[] = "Configure Media SLA ";
constexpr char kAddTitle[] = "Add SLA";
constexpr char kEditTitle[] = "Edit Media SLA";
constexpr char kListPage[] = "pagename=fr.sla";
constexpr char kNoRights[] = "Sorry you do not have rights for this";
constexpr char kMissing[] = "Media SLA Not Found, please go back and try again.";

SQLDetailDefinition MediaSLA(const ManagerContext& ctx, const char* badName) {
    SQLField name;
    name.name = name.column = "name";
    name.label = "Name";
    name.required = true;
    name.complaint = badName;
    SQLField target;
    target.name = "response";
    target.column = "responseSLA";
    target.label = "Respond within";
    target.type = SQLFieldType::kDuration;
    target.min = 1;

    SQLDetailDefinition definition;
    definition.row.table = "FrontSLAs";
    definition.row.scope = {{"customerid", ctx.customerIdString.c_str()}};
    definition.row.fields = {name, target};
    definition.row.unique = "name";
    definition.noun = "SLA";
    definition.naming = "name";
    definition.duplicate = "Media SLA with that name already exists";
    definition.removable = true;
    return definition;
}

WebItem* AnswerForm(ManagerContext& ctx, const char* title, const char* badName,
                    const std::string& id) {
    if (!MayConfigure(ctx)) return MessagePage(ctx, title, kNoRights);
    return AnswerDetail(ctx, MediaSLA(ctx, badName), {title, kMissing, kListPage}, id);
}

}  // namespace

bool MayConfigure(ManagerContext& ctx) {
    return CheckSecurityLevel(ctx, kConfigureCallCentre) &&
           !CheckSecurityLevel(ctx, kRestrictedUser);
}

WebItem* BuildMediaSLAs(ManagerContext& ctx) {
    SQLTableDefinition list;
    list.title = kListTitle;
    list.from = "FrontSLAs";
    list.condition = SqlText("customerid='%i'", ctx.customerId).c_str();
    list.key = "id";
    list.order = "name";
    list.columns = {{.field = "id", .heading = "", .sql = "id"},
                    {.field = "name", .heading = "Name", .sql = "name", .searched = true},
                    {.field = "response",
                     .heading = "Respond within",
                     .sql = "responseSLA",
                     .style = SQLStyle::kDuration}};
    if (!MayConfigure(ctx)) return AnswerList(ctx, list);
    list.columns[1].link = "pagename=fr.sla.edit&index=[id]";
    const UString add = ctx.GetURL("pagename=fr.sla.add");
    return AnswerList(ctx, list, {{kAddTitle, add.c_str()}});
}

WebItem* BuildMediaSLAAdd(ManagerContext& ctx) {
    return AnswerForm(ctx, kAddTitle, "Bad SLA name", "");
}

WebItem* BuildMediaSLAEdit(ManagerContext& ctx) {
    // Never empty: that would be a new one.
    std::string id = PostedText(ctx, "index");
    if (id.empty()) id = "0";
    return AnswerForm(ctx, kEditTitle, "Bad Media SLA name", id);
}
