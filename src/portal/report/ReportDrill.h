// ReportDrill.h: the calls, or messages, behind one figure of a report.
#pragma once

#include <string>

class PortalContext;

enum class DrillKind { kCalls, kMessages };

// Answers the list's template with "[drill]" replaced by the condition that chooses the rows behind
// the figure: the period, the legs that count, and who must be permitted, with placeholders of its
// own. The values are written so that nothing in them can be taken for SQL or for a placeholder.
//
// The arguments "by" and "value" say which row of the report the figure stands in, "by2" and
// "value2" narrow that down, and "outcome" says which column: "calls", "legs", "inbound",
// "offered", "answered", "unanswered", "voicemail", "passedon", "abandoned", "outbound",
// "internal", "transferred" or "connected"; of a user "missed" too; of messages "messages",
// "received", "sent", "questions", "answered" or "unanswered". Anything else throws a text.
//
// The first four need a report that asks for that kind of names: one with [entity] on the column.
//
//   by           value                     permitted must be
//   user         the user's name           the user, as caller, or as who answered or was rung
//   department   origCostCentre            the department
//   queue        B_Name, who was dialled   that party
//   agent        B_RemoteName              that person
//   day          yyyy-mm-dd                one of the parties that carry [entity] in `report`, the
//   month        yyyy-mm                   template that counted; so with all that follow
//   hour         0 to 23
//   weekday      1 (Sunday) to 7
//   ddi          targetNumber
//   trunk        the trunk of either side
//   account      accountCode
//   number       the outside party's number
//   call         confId of a leg: every leg of its call, whatever the period
//
// Messages have day, month, hour and weekday too, the ids of an "inbox", a "teammate" or a
// "conversation", and the name of a "tag".
std::string FillDrill(const PortalContext& ctx, DrillKind kind, const char* report,
                      const char* templateText);

// What the row of the figure is about, for the list's heading: "Department Sales, Hour 9". Empty
// where the arguments hold no more than ids.
std::string DrillRow(const PortalContext& ctx);
