#include "portal/report/ReportDrillList.h"

#include <cstring>

#include "cgiFramework/UrlArgument.h"
#include "common/Log.h"
#include "common/ThrowText.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportDefinition.h"
#include "portal/report/ReportDrill.h"

namespace {

constexpr char kCallList[] = "calllogdrill";
constexpr char kMessageList[] = "mediadrill";
constexpr char kMark[] = "[drill]";
constexpr char kOwnDuration[] = "[timeLimit]";

constexpr char kParentFileSql[] = "SELECT reportfile FROM CallReport WHERE pagename='%s'";

// What tells one list from another, besides the criteria.
constexpr const char* kListArguments[] = {"parent", "field",  "by",     "value",
                                          "by2",    "value2", "outcome"};

constexpr char kNoParent[] = "The report that this list belongs to does not exist.";

// A list of messages is about one column of a report that is there.
void CheckMessageList(PortalContext& ctx, const char* parent) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kParentFileSql, SqlQuoted(parent)));
    if (!db.NextRow() || *db.Column(0) == '\0') {
        LogError("mediadrill - parent reportfile not found");
        ThrowText("%s", kNoParent);
    }
    if (*ctx.ArgumentText("field") == '\0') {
        LogError("mediadrill - no field specified");
        ThrowText("The column that this list belongs to was not named.");
    }
}

}  // namespace

bool IsDrillPage(const char* pagename) {
    return strcmp(pagename, kCallList) == 0 || strcmp(pagename, kMessageList) == 0;
}

bool IsDrillList(const ReportDefinition& definition) {
    return strstr(definition.query.c_str(), kMark) != nullptr;
}

std::unique_ptr<ReportDefinition> LoadDrillList(PortalContext& ctx, const char* pagename,
                                                LumoraReportFilter& filter, UString& back) {
    // The page that follows a run names the report as "report".
    const char* parentName = ctx.ArgumentText("parent");
    if (*parentName == '\0') parentName = ctx.ArgumentText("report");
    const bool messages = strcmp(pagename, kMessageList) == 0;
    if (messages && *ctx.ArgumentText("query_id") == '\0') CheckMessageList(ctx, parentName);

    LumoraReportFilter unused;
    auto list = ReportDefinition::Load(ctx, pagename, unused);
    if (list == nullptr) ThrowText("The report catalogue lacks the list \"%s\".", pagename);
    const auto parent = ReportDefinition::Load(ctx, parentName, filter);
    if (parent == nullptr || IsDrillList(*parent)) ThrowText("%s", kNoParent);
    // There a duration says how the report counts, not which calls are in it.
    if (strstr(parent->query.c_str(), kOwnDuration) != nullptr) filter.hasTimeLimit = false;
    // Private inboxes stay private, whatever the report asks for; and whom the caller may see does
    // not depend on the report that the request names.
    if (messages) filter.hasInbox = true;
    filter.report = pagename;
    back = RunUrl(ctx, *parent, filter);

    list->page = pagename;
    list->pagename = parent->pagename;
    list->name = parent->name;
    list->category = parent->category;
    list->fieldFile = parent->reportFile;
    std::string arguments;
    for (const char* name : kListArguments)
        if (ctx.FindWebArgument(name) != nullptr)
            AppendUrlArgument(arguments, name, ctx.ArgumentText(name));
    list->arguments = arguments.c_str();
    if (*ctx.ArgumentText("by") != '\0' || *ctx.ArgumentText("query_id") == '\0')
        list->query = FillDrill(ctx, messages ? DrillKind::kMessages : DrillKind::kCalls,
                                parent->query.c_str(), list->query.c_str())
                          .c_str();
    return list;
}
