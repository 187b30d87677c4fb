// ReportFavourites.h: the reports that a user keeps under "My Reports".
#pragma once

class PortalContext;

// Adds the report that the argument "addmyreport" names to the caller's favourites, or takes the
// one of "removemyreport" out. Only a request that may change something does; others are told so.
// Answers what to tell the user, or null when there is nothing to tell. Throws the server's
// message.
const char* ChangeFavourites(PortalContext& ctx);
