// UserSearch.h: the customer's telephone users, as the directory's mirror has them.
#pragma once

#include "cgiFramework/SQLTableQuery.h"
#include "cgiFramework/XMLPage.h"

class ManagerContext;
class WebItem;

// "user.search": the list. The caller owns it. Throws the server's message.
WebItem* WebXMLSearch(ManagerContext& ctx);

// "xml.user.search": the page of the same list that the arguments of SQLTableQuery ask for, for
// scripts that offer users to choose from:
//
//   <users total="150" page="1" pages="6"><user><guid/><name/><number/><company/></user>...</users>
//
// With agents each user also has <agent/>, the id of the contact-centre agent that the user is or
// nothing, and, for callers who may configure the contact centre, <add/>: where to make the user
// one.
class XMLUserSearchSQL : public XMLPage {
  public:
    XMLUserSearchSQL(ManagerContext& ctx, bool withAgents);
};

// Adds one page of the list to the document: an element `root` with an element `row` for each row,
// in which every column is an element of its field's name. With `addPage` each row whose last
// column is empty also has an element "add": the URL of that page, with the row's first column as
// argument "user".
void AddXMLRows(ManagerContext& ctx, XMLPage& page, SQLTableDefinition definition, const char* root,
                const char* row, const char* addPage);
