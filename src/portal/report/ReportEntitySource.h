// ReportEntitySource.h: the tables that name the entities of reports, and the caller's permissions.
#pragma once

#include <string>

class PortalContext;

// A kind of entity: where its names stand, and which rows of CallLogPermissions limit it.
struct EntitySource {
    const char* table;    // with the column customerid
    const char* name;     // the column that calls refer to
    const char* number;   // the column that permissions refer to
    const char* type;     // of the permissions
    const char* right;    // which of their flags admits
    const char* refusal;  // the name of one whom the caller may not see
};

inline constexpr EntitySource kUsers = {"LDAPUsers", "cn",      "telephonenumber",
                                        "User",      "logging", "Restricted user selected!"};
inline constexpr EntitySource kDepartments = {"LDAPDepartments", "cn",
                                              "telephonenumber", "Department",
                                              "logging",         "Restricted department selected!"};
inline constexpr EntitySource kQueues = {"CallCentreQueue", "queueName",
                                         "queueNumber",     "Department",
                                         "queue",           "Restricted queue selected!"};
inline constexpr EntitySource kAgents = {
    "CallCentreAgent", "agentName", "agentNumber", "User", "agent", "Restricted agent selected!"};
inline constexpr EntitySource kInboxes = {"FrontInbox", "id",      "id",
                                          "Inbox",      "logging", "No permission for inbox"};
inline constexpr EntitySource kTeammates = {"FrontTeammate", "id", "id", "Teammate", "logging", ""};

// Do the caller's permissions limit the kind? Those for recordings count when that is asked, though
// they admit nobody; so does any row of the type that carries the kind's own right.
bool IsRestricted(PortalContext& ctx, const EntitySource& source);

// A SELECT of the names in one column, `column` being an expression of source.name. More conditions
// can follow it.
std::string NamesSql(PortalContext& ctx, const EntitySource& source, const char* column,
                     bool restricted);
