// Dispatch.h: from a request to its page.
#pragma once

class ManagerContext;
class WebRender;

// Answers the page that the argument "pagename" names. Throws a text on a fatal failure.
void DisplayPage(ManagerContext& ctx, WebRender* out);

// True when the user holds this right. Throws the server's message.
bool CheckSecurityLevel(ManagerContext& ctx, int rightId);

// False when the run asked for is of a report category that the user's mask forbids.
bool CheckReportCategory(ManagerContext& ctx);
