// LDAPSearch.h: one search of the directory, from the request to the rows.
#pragma once

#include "ldap/LDAPTable.h"

class LDAPSession;

// Appends every entry below `base` (empty: the whole directory) that the filter finds. False when
// the answer is not complete, whatever came of it: no connection, a refusal, or silence in its
// middle; the reason has been reported. `filter` is ours: texts from elsewhere stand in it behind
// SlashHex (ldap/ldap_filter.h).
[[nodiscard]] bool SearchDirectory(LDAPSession& session, const char* base, const char* filter,
                                   LDAPTable& rows);
