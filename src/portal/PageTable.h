// PageTable.h: every page of the portal, by name.
#pragma once

#include <memory>

#include "cgiFramework/WebPage.h"

class ManagerContext;

// The page for this name, or the refusal that its guard gives; null for a name that no row has.
std::unique_ptr<WebPage> BuildPage(ManagerContext& ctx, const char* name);

// Offers the rows with a caption that the user's rights allow; `name` is the page on screen.
void FillMenu(ManagerContext& ctx, const char* name);
