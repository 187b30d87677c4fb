// A received search request and the entries that answer it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ldap/asn1ber.h"
#include "tools/directoryd/Filter.h"

namespace directoryd {

struct SearchRequest {
    std::string base;
    int scope = 0;
    int sizeLimit = 0;  // entries; 0: no limit
    bool typesOnly = false;
    std::unique_ptr<Filter> filter;
    std::vector<std::string> attributes;  // as the client spells them; empty: all

    // Reads the content of a search request (RFC 4511, 4.5.1); false when it is malformed.
    bool Decode(BerCursor in);

    // The attributes of an entry that the request asks for; at least one, since some clients take
    // an entry without attributes for the end.
    std::unique_ptr<ASN1Sequence> Select(const Entry& entry) const;
};

}  // namespace directoryd
