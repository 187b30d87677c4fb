// ReportCatalogue.h: the list of the reports that a user may run.
#pragma once

#include "cgiFramework/WebPage.h"

class PortalContext;

// May a user with this report mask run reports of the category? The mask is decimal text whose bit
// c allows category c; an empty one allows all.
bool IsCategoryAllowed(const char* reportMask, int category);

// The reports that are not hidden, under a heading for each category, in the order of the
// catalogue, with the choice between all of them and the caller's favourites. The argument
// "filterVal", unless it is empty or 0, asks for the favourites alone, "category" for one category.
// The constructor reads them and throws the server's message.
class ReportCatalogue : public WebDiv {
  public:
    explicit ReportCatalogue(PortalContext& ctx);
};

// "Reports", or the name of the one category that is asked for.
UString CatalogueTitle(PortalContext& ctx);
