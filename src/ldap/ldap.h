// ldap.h: the numbers of the directory protocol (RFC 4511) that both directions share.
#pragma once

// Identifier octets of the protocol operations.
enum LDAPOperation : unsigned char {
    kLdapUnbindRequest = 0x42,
    kLdapDelRequest = 0x4A,
    kLdapAbandonRequest = 0x50,
    kLdapBindRequest = 0x60,
    kLdapBindResponse = 0x61,
    kLdapSearchRequest = 0x63,
    kLdapSearchEntry = 0x64,
    kLdapSearchDone = 0x65,
    kLdapModifyRequest = 0x66,
    kLdapModifyResponse = 0x67,
    kLdapAddRequest = 0x68,
    kLdapAddResponse = 0x69,
    kLdapDelResponse = 0x6B,
    kLdapModifyDNRequest = 0x6C,
    kLdapModifyDNResponse = 0x6D,
    kLdapCompareRequest = 0x6E,
    kLdapCompareResponse = 0x6F,
};

// Identifier octets of the filter choices.
enum LDAPFilterTag : unsigned char {
    kLdapFilterAnd = 0xA0,
    kLdapFilterOr = 0xA1,
    kLdapFilterNot = 0xA2,
    kLdapFilterEqual = 0xA3,
    kLdapFilterSubstrings = 0xA4,
    kLdapFilterGreaterOrEqual = 0xA5,
    kLdapFilterLessOrEqual = 0xA6,
    kLdapFilterPresent = 0x87,
    // The pieces of a substrings filter.
    kLdapSubstringInitial = 0x80,
    kLdapSubstringAny = 0x81,
    kLdapSubstringFinal = 0x82,
};

// Result codes that this side makes itself; any other comes from the server as it stands.
enum LDAPResultCode {
    kLdapSuccess = 0,
    kLdapProtocolError = 2,        // an answer that does not fit the request, or no readable code
    kLdapInsufficientAccess = 50,  // a search while not bound
    kLdapLocalError = 80,          // an answer to another request, and no way back into step
    kLdapServerDown = 81,          // not connected, not sent, or nothing received
    kLdapFilterError = 87,
};

// How reading one message can fail.
enum LDAPReadError {
    kLdapReadTimeout = -110,  // nothing, or too little, arrived in time
    kLdapReadMalformed = -5,
};
