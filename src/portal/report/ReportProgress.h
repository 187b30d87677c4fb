// ReportProgress.h: what the browser sees of a report that is being made in the background.
#pragma once

#include <cstdint>

#include "cgiFramework/JSONPage.h"
#include "common/UStringX.h"

class BackgroundJob;
class LumoraReportFilter;
class PortalContext;
class StandardPage;

// "12 seconds so far, 3,400 rows"; no rows are not mentioned: the server may be sorting.
UString ProgressText(int64_t seconds, uint64_t rows);

// Fills `page` with the form that shows the job's progress and cancels it. A script keeps it up to
// date and fetches the result; without scripts the page loads itself again.
void AddProgress(PortalContext& ctx, StandardPage& page, const char* report,
                 const BackgroundJob& job, const LumoraReportFilter& filter);

// Does the request ask for a job's progress alone?
bool IsProgressAsked(const PortalContext& ctx);

// Answers the script, after a second, or as soon as there is something new: "state" is "running",
// "ready" or "ended", and "text" is for people.
class ReportProgressFeed : public JSONPage {
  public:
    explicit ReportProgressFeed(PortalContext& ctx);
};

// Cancels the job that the request names. Answers what to tell the user.
const char* CancelReport(PortalContext& ctx);
