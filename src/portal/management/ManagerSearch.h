// ManagerSearch.h: the people who sign in to the portal for the caller's customer.
#pragma once

#include "cgiFramework/XMLPage.h"

class ManagerContext;
class WebItem;

// "manager.search": the list, with the way to each user's details and rights. The caller owns it.
// Throws the server's message.
WebItem* BuildManagerSearch(ManagerContext& ctx);

// "xml.manager.search": one page of the list for scripts that offer users to choose from:
//
//   <managers total="12" page="1"
//   pages="1"><manager><id/><username/><name/></manager>...</managers>
class XMLManagerSearch : public XMLPage {
  public:
    explicit XMLManagerSearch(ManagerContext& ctx);
};
