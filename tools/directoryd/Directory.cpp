#include "tools/directoryd/Directory.h"

#include <sys/random.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace directoryd {

namespace {

constexpr char kGuid[] = "GUID";
// Together these keep every entry within one message of 65,535 bytes.
constexpr size_t kMostLevels = 16;
constexpr size_t kLongestRdn = 512;
constexpr size_t kLargestEntry = 50000;
constexpr size_t kAttributeOverhead = 16;

std::string NewGuid() {
    uint16_t part[8] = {};
    // No such call fails for so few bytes.
    if (getrandom(part, sizeof part, 0) != sizeof part) return {};
    char text[40];
    std::snprintf(text, sizeof text, "%04x%04x-%04x-4%03x-%04x-%04x%04x%04x", part[0], part[1],
                  part[2], part[3] & 0xFFF, (part[4] & 0x3FFF) | 0x8000, part[5], part[6], part[7]);
    return text;
}

std::vector<Attribute>::iterator FindIn(std::vector<Attribute>& attributes, std::string_view name) {
    return std::find_if(attributes.begin(), attributes.end(),
                        [name](const Attribute& a) { return SameText(a.name, name); });
}

void Set(std::vector<Attribute>& attributes, std::string_view name, std::string_view value) {
    const auto found = FindIn(attributes, name);
    if (found != attributes.end())
        found->value = value;
    else
        attributes.push_back({std::string(name), std::string(value)});
}

Result Check(const std::vector<Attribute>& attributes) {
    size_t total = 0;
    for (size_t i = 0; i < attributes.size(); ++i) {
        const Attribute& a = attributes[i];
        if (!IsAttributeName(a.name) || SameText(a.name, "dn"))
            return Result::kUndefinedAttributeType;
        for (size_t k = 0; k < i; ++k)
            if (SameText(attributes[k].name, a.name)) return Result::kConstraintViolation;
        total += a.name.size() + a.value.size() + kAttributeOverhead;
        if (total > kLargestEntry) return Result::kAdminLimitExceeded;
    }
    return Result::kSuccess;
}

Result Apply(const Change& change, std::vector<Attribute>& attributes) {
    const auto found = FindIn(attributes, change.name);
    const bool exists = found != attributes.end();
    if (change.values.size() > 1) return Result::kConstraintViolation;
    switch (change.operation) {
        case 0:
            if (change.values.empty()) return Result::kProtocolError;
            if (exists) return Result::kAttributeOrValueExists;
            break;
        case 1:
            if (!exists || (!change.values.empty() && change.values[0] != found->value))
                return Result::kNoSuchAttribute;
            attributes.erase(found);
            return Result::kSuccess;
        case 2:
            if (!change.values.empty()) break;
            if (exists) attributes.erase(found);
            return Result::kSuccess;
        default:
            return Result::kProtocolError;
    }
    Set(attributes, change.name, change.values[0]);
    return Result::kSuccess;
}

bool VisitBelow(const Entry& entry, bool deep, const std::function<bool(const Entry&)>& visit) {
    for (const auto& [key, child] : entry.children) {
        if (!visit(*child)) return false;
        if (deep && !VisitBelow(*child, deep, visit)) return false;
    }
    return true;
}

}  // namespace

std::string Entry::DN() const {
    std::string dn = rdn.text;
    for (const Entry* up = parent; up != nullptr && up->parent != nullptr; up = up->parent)
        dn += "," + up->rdn.text;
    return dn;
}

const Attribute* Entry::Find(std::string_view name) const {
    for (const Attribute& a : attributes)
        if (SameText(a.name, name)) return &a;
    return nullptr;
}

Entry* Directory::Locate(const std::vector<Rdn>& parts, size_t from) const {
    Entry* at = root_.get();
    size_t left = parts.size();
    if (left > from && SameText(parts[left - 1].type, kGuid)) {
        const auto found = byGuid_.find(Fold(parts[--left].value));
        if (found == byGuid_.end()) return nullptr;
        at = found->second;
    }
    while (left > from) {
        const auto found = at->children.find(parts[--left].Key());
        if (found == at->children.end()) return nullptr;
        at = found->second.get();
    }
    return at;
}

Entry* Directory::Locate(std::string_view dn) const {
    std::vector<Rdn> parts;
    return ParseName(dn, parts) ? Locate(parts, 0) : nullptr;
}

Result Directory::Add(std::string_view dn, std::vector<Attribute> attributes, bool given) {
    std::vector<Rdn> parts;
    if (!ParseName(dn, parts) || parts.empty() || parts[0].value.empty())
        return Result::kInvalidDNSyntax;
    const Rdn& own = parts[0];
    if (SameText(own.type, kGuid)) return Result::kNamingViolation;
    Entry* const parent = Locate(parts, 1);
    if (parent == nullptr) return Result::kNoSuchObject;
    if (parent->children.count(own.Key()) != 0) return Result::kEntryAlreadyExists;
    size_t level = 1;
    for (const Entry* up = parent; up->parent != nullptr; up = up->parent)
        ++level;
    if (level > kMostLevels || own.text.size() > kLongestRdn) return Result::kAdminLimitExceeded;

    Set(attributes, own.type, own.value);
    const auto guid = FindIn(attributes, kGuid);
    if (guid != attributes.end() && (!given || byGuid_.count(Fold(guid->value)) != 0))
        return Result::kConstraintViolation;
    const std::string newGuid = guid != attributes.end() ? guid->value : NewGuid();
    changed_ = changed_ || guid == attributes.end();
    Set(attributes, kGuid, newGuid);
    if (const Result checked = Check(attributes); checked != Result::kSuccess) return checked;

    auto entry = std::make_unique<Entry>();
    entry->rdn = own;
    entry->parent = parent;
    entry->attributes = std::move(attributes);
    byGuid_[Fold(newGuid)] = entry.get();
    parent->children[own.Key()] = std::move(entry);
    return Result::kSuccess;
}

Result Directory::Delete(std::string_view dn) {
    Entry* const entry = Locate(dn);
    if (entry == nullptr || entry->parent == nullptr) return Result::kNoSuchObject;
    if (!entry->children.empty()) return Result::kNotAllowedOnNonLeaf;
    byGuid_.erase(Fold(entry->Find(kGuid)->value));
    // A copy: the key that erase() is given must not die with the entry.
    const std::string key = entry->rdn.Key();
    entry->parent->children.erase(key);
    changed_ = true;
    return Result::kSuccess;
}

Result Directory::Modify(std::string_view dn, const std::vector<Change>& changes) {
    Entry* const entry = Locate(dn);
    if (entry == nullptr || entry->parent == nullptr) return Result::kNoSuchObject;
    std::vector<Attribute> attributes = entry->attributes;
    for (const Change& change : changes) {
        if (SameText(change.name, kGuid)) return Result::kConstraintViolation;
        if (SameText(change.name, entry->rdn.type)) return Result::kNotAllowedOnRDN;
        if (const Result r = Apply(change, attributes); r != Result::kSuccess) return r;
    }
    if (const Result checked = Check(attributes); checked != Result::kSuccess) return checked;
    entry->attributes = std::move(attributes);
    changed_ = true;
    return Result::kSuccess;
}

Result Directory::Rename(std::string_view dn, std::string_view newRdn) {
    Entry* const entry = Locate(dn);
    if (entry == nullptr || entry->parent == nullptr) return Result::kNoSuchObject;
    const size_t equals = newRdn.find('=');
    if (equals == std::string_view::npos || equals + 1 == newRdn.size() ||
        newRdn.find('\0') != std::string_view::npos)
        return Result::kInvalidDNSyntax;
    if (!SameText(newRdn.substr(0, equals), entry->rdn.type)) return Result::kNamingViolation;
    const Rdn rdn = MakeRdn(entry->rdn.type, newRdn.substr(equals + 1));
    if (rdn.text.size() > kLongestRdn) return Result::kAdminLimitExceeded;

    auto& siblings = entry->parent->children;
    const auto taken = siblings.find(rdn.Key());
    if (taken != siblings.end() && taken->second.get() != entry) return Result::kEntryAlreadyExists;
    auto node = siblings.extract(entry->rdn.Key());
    node.key() = rdn.Key();
    entry->rdn = rdn;
    Set(entry->attributes, rdn.type, rdn.value);
    siblings.insert(std::move(node));
    changed_ = true;
    return Result::kSuccess;
}

void Directory::Visit(const Entry& base, int scope,
                      const std::function<bool(const Entry&)>& visit) const {
    const bool withBase = scope != 1 && base.parent != nullptr;
    if (withBase && !visit(base)) return;
    if (scope != 0) VisitBelow(base, /*deep=*/scope == 2, visit);
}

}  // namespace directoryd
