// PageTable.h: every page of the portal, by name.
#pragma once

#include <memory>

#include "cgiFramework/WebPage.h"

class ManagerContext;

// The page for this name, or the refusal that its guard gives; null for a name that no row has, and
// where the page leaves the answer to the fallback.
std::unique_ptr<WebItem> BuildPage(ManagerContext& ctx, const char* name);

// The page of that name that a file of the report folder defines, or null.
std::unique_ptr<WebItem> BuildDefinedPage(ManagerContext& ctx, const char* name);

// Offers the rows with a caption that the user's rights allow; `name` is the page on screen.
void FillMenu(ManagerContext& ctx, const char* name);
