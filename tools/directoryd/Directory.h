// The directory itself: a tree of entries in memory, and the operations that change it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/directoryd/Name.h"

namespace directoryd {

// Result codes of the protocol (RFC 4511, 4.1.9) that this server gives.
enum class Result {
    kSuccess = 0,
    kProtocolError = 2,
    kSizeLimitExceeded = 4,
    kAuthMethodNotSupported = 7,
    kAdminLimitExceeded = 11,
    kUnavailableCriticalExtension = 12,
    kNoSuchAttribute = 16,
    kUndefinedAttributeType = 17,
    kConstraintViolation = 19,
    kAttributeOrValueExists = 20,
    kNoSuchObject = 32,
    kInvalidDNSyntax = 34,
    kInvalidCredentials = 49,
    kInsufficientAccess = 50,
    kNamingViolation = 64,
    kNotAllowedOnNonLeaf = 66,
    kNotAllowedOnRDN = 67,
    kEntryAlreadyExists = 68,
};

// Every attribute has one value, which may be empty and may hold any bytes.
struct Attribute {
    std::string name;
    std::string value;
};

struct Change {
    int operation = 0;  // 0 add, 1 delete, 2 replace
    std::string name;
    std::vector<std::string> values;
};

struct Entry {
    Rdn rdn;
    Entry* parent = nullptr;
    std::vector<Attribute> attributes;
    std::map<std::string, std::unique_ptr<Entry>> children;  // by Rdn::Key

    std::string DN() const;
    // Null when there is none of this name.
    const Attribute* Find(std::string_view name) const;
};

// An entry is known by its name, and everywhere also by "GUID=" and its GUID, which the directory
// gives it on creation and which never changes. Its own name's part is one of its attributes.
class Directory {
  public:
    // With `given`, the attributes may bring the GUID that the entry had before.
    Result Add(std::string_view dn, std::vector<Attribute> attributes, bool given = false);
    Result Delete(std::string_view dn);
    // All changes or none.
    Result Modify(std::string_view dn, const std::vector<Change>& changes);
    // `newRdn` is a type, "=" and the value as it is, without escapes. The old value goes, and what
    // lies below comes along.
    Result Rename(std::string_view dn, std::string_view newRdn);

    // Null for a name that is not there. The empty name is the root, which has no attributes.
    const Entry* Find(std::string_view dn) const { return Locate(dn); }
    // Visits entries until `visit` answers false: with scope 0 the entry itself, 1 those right
    // below it, 2 it and all below. The root is never visited.
    void Visit(const Entry& base, int scope, const std::function<bool(const Entry&)>& visit) const;

    size_t size() const { return byGuid_.size(); }
    // Whether anything has changed since the last call with false.
    bool changed() const { return changed_; }
    void SetChanged(bool changed) { changed_ = changed; }

  private:
    Entry* Locate(std::string_view dn) const;
    Entry* Locate(const std::vector<Rdn>& parts, size_t from) const;

    std::unique_ptr<Entry> root_ = std::make_unique<Entry>();
    std::unordered_map<std::string, Entry*> byGuid_;  // by folded GUID
    bool changed_ = false;
};

}  // namespace directoryd
