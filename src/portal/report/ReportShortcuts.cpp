#include "portal/report/ReportShortcuts.h"

#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportDefinition.h"

namespace {

constexpr char kLastRun[] = "lastReportRun";
// A session's lines are cut behind 2047 bytes, name included: half a run would be another one.
constexpr size_t kMostBytes = 2000;
constexpr char kGenerate[] = "Generate Report";

// What follows a run by its number is complete already.
bool IsFollowing(const PortalContext& ctx) {
    return ctx.IsArgumentGiven("query_id");
}

void AskForRun(PortalContext& ctx) {
    if (IsFollowing(ctx)) return;
    ctx.SetWebArgument("submit", kGenerate);
    ctx.SetWebArgument("csv", "true");
}

}  // namespace

void RememberRun(PortalContext& ctx, const ReportDefinition& definition,
                 const LumoraReportFilter& filter) {
    UString run = definition.arguments;
    filter.AppendArguments(run);
    const std::string_view text = run.c_str();
    ctx.SetWebSessionVar(kLastRun, text.size() <= kMostBytes ? run.c_str() : "");
}

bool AskForCsv(PortalContext& ctx) {
    if (!ctx.IsArgumentGiven("report")) {
        if (!ctx.HasWebSessionVar(kLastRun) || ctx.GetWebSessionVar(kLastRun)->IsEmpty())
            return false;
        const UString run = ctx.GetWebSessionVar(kLastRun)->Text();
        ctx.AddWebArguments(run.c_str(), WebArgument::Normal);
    }
    AskForRun(ctx);
    return true;
}

void AskForPriceRecord(PortalContext& ctx) {
    ctx.SetWebArgument("report", "pricerecord");
    if (!ctx.IsArgumentGiven("reportPeriod") && !ctx.IsArgumentGiven("startDate"))
        ctx.SetWebArgument("reportPeriod", "lastmonth");
    AskForRun(ctx);
}
