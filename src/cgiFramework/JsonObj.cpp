#include "cgiFramework/JsonObj.h"

#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

bool JsonObj::reverse_arrays = false;

namespace {

// Where nodes lie: one behind the other in large blocks, which is several times faster than the
// heap. The blocks are used anew when the last node is gone, and given back with the process.
class NodePool {
  public:
    void* Take() {
        if (left_ == 0) NextBlock();
        --left_;
        ++live_;
        void* node = at_;
        at_ += kNodeSize;
        return node;
    }
    void GiveBack() {
        if (--live_ > 0) return;
        used_ = 0;
        left_ = 0;
    }

  private:
    static constexpr size_t kAlign = alignof(std::max_align_t);
    static constexpr size_t kNodeSize = (sizeof(JsonObj) + kAlign - 1) / kAlign * kAlign;
    static constexpr size_t kBlockNodes = 256;

    void NextBlock() {
        if (used_ == blocks_.size())
            blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(kBlockNodes * kNodeSize));
        at_ = blocks_[used_++].get();
        left_ = kBlockNodes;
    }

    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    size_t used_ = 0;  // of the blocks
    std::byte* at_ = nullptr;
    size_t left_ = 0;  // nodes in the present block
    size_t live_ = 0;
};

NodePool nodePool;

}  // namespace

void* JsonObj::operator new(size_t) {
    return nodePool.Take();
}

void JsonObj::operator delete(void*) {
    nodePool.GiveBack();
}

JsonObj::~JsonObj() {
    if (name_borrowed_) name.Init();
}

void JsonObj::BorrowName(char* text) {
    name.buffer = text;
    name.buffer_size = static_cast<int32_t>(strlen(text)) + 1;
    name_borrowed_ = true;
}

void JsonObj::AddElement(std::unique_ptr<JsonObj> element) {
    if (reverse_arrays)
        values.Prepend(element.release());
    else
        values.Append(element.release());
}

JsonObj* JsonObj::Find(const char* key) const {
    for (JsonObj& child : values) {
        if (!child.name.IsEmpty() && child.name == key) return &child;
    }
    return nullptr;
}

const char* JsonObj::String(const char* key) const {
    const JsonObj* child = Find(key);
    return child != nullptr ? child->String() : "";
}

const char* JsonObj::GetDateTime(const char* key, char* buffer) const {
    constexpr double kYear10000 = 253402300800.0;
    constexpr size_t kRoom = 20;
    const JsonObj* child = Find(key);
    if (child == nullptr || child->type != kNumber) return "";
    // Tested as a double, and so that NaN fails: converting what is out of range is undefined.
    if (!(child->number > -kYear10000 && child->number < kYear10000)) return "";
    const time_t seconds = static_cast<time_t>(child->number);
    tm local{};
    if (localtime_r(&seconds, &local) == nullptr) return "";
    const int year = local.tm_year + 1900;
    if (year < 0 || year > 9999) return "";
    return strftime(buffer, kRoom, "%Y-%m-%d %H:%M:%S", &local) != 0 ? buffer : "";
}

namespace {

JsonObj::Type TypeOfLetter(char letter) {
    switch (letter) {
        case 'A':
            return JsonObj::kArray;
        case 'O':
            return JsonObj::kObject;
        case 'N':
            return JsonObj::kNumber;
        case 'T':
            return JsonObj::kTrue;
        case 'F':
            return JsonObj::kFalse;
        case 'n':
            return JsonObj::kNull;
        default:
            throw "JsonObj::Query - unrecognised find type";
    }
}

}  // namespace

void JsonObj::Query(const UString& path, UString& result) const {
    const JsonObj* node = this;
    for (const char* p = path.c_str(); *p != '\0';) {
        const std::string step(p, strcspn(p, ";"));
        p += step.size();
        if (*p == ';') ++p;
        if (step == "SZ") {
            result.Format("%d", static_cast<int>(node->values.size()));
            return;
        }
        if (step[0] != 'F') throw "JsonObj::Query - unrecognised find type";
        if (step.size() < 3 || step[2] != ':') throw "JsonObj::Query - missing colon";
        if (step.size() == 3) throw "JsonObj::Query - missing find arg";
        const JsonObj* child = node->Find(step.c_str() + 3);
        if (child == nullptr || child->type != TypeOfLetter(step[1])) return;
        node = child;
    }
}

void JsonObj::Print(int indent) const {
    fprintf(stderr, "%*s", indent * 2, "");
    if (!name.IsEmpty()) fprintf(stderr, "name: %s\t", name.c_str());
    switch (type) {
        case kString:
            fprintf(stderr, "string: \"%s\"\n", String());
            break;
        case kNumber:
            fprintf(stderr, "number: \"%g\"\n", number);
            break;
        case kObject:
            fputs("object:\n", stderr);
            break;
        case kArray:
            fputs("array:\n", stderr);
            break;
        case kTrue:
            fputs("true\n", stderr);
            break;
        case kFalse:
            fputs("false\n", stderr);
            break;
        case kNull:
            fputs("null\n", stderr);
            break;
    }
    for (const JsonObj& child : values)
        child.Print(indent + 1);
}

void JsonString::Alloc(size_t size) {
    constexpr size_t kFirst = 64;
    if (size <= static_cast<size_t>(alloc_len)) return;
    size_t capacity = alloc_len > 0 ? static_cast<size_t>(alloc_len) : kFirst;
    while (capacity < size)
        capacity *= 2;
    void* grown = capacity <= INT_MAX ? realloc(alloc_buf, capacity) : nullptr;
    if (grown == nullptr) throw "JsonString out of memory";
    alloc_buf = static_cast<char*>(grown);
    alloc_len = static_cast<int>(capacity);
    end = alloc_buf + len;
    *end = '\0';
}

void JsonString::Append(const char* bytes, size_t size) {
    Alloc(static_cast<size_t>(len) + size + 1);
    memcpy(end, bytes, size);
    len += static_cast<int>(size);
    end = alloc_buf + len;
    *end = '\0';
}
