// The reader proper. No operation moves past the text's terminating zero.
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "cgiFramework/JsonObj.h"
#include "common/Parse.h"

namespace {

// Bounds the stack that reading and walking a tree take.
constexpr int kDeepest = 512;
// Bounds the memory: a node takes some hundred times the two bytes that it may cost to ask for it.
constexpr size_t kMostValues = 2'000'000;

bool StartsWith(const char* text, const char* word) {
    return strncmp(text, word, strlen(word)) == 0;
}

// What a backslash and `c` stand for in a string; 0 when they stand for nothing.
char Unescaped(char c) {
    static const char kEscapes[] = "b\bf\fn\nr\rt\t\"\"\\\\//";
    for (const char* pair = kEscapes; *pair != '\0'; pair += 2)
        if (*pair == c) return pair[1];
    return '\0';
}

// Reads a number as strtod does. Plain whole numbers, which are most, are read here: below 10^15
// they are exact.
double ReadNumber(char* text, char** behind) {
    constexpr int kExactDigits = 15;
    char* p = text + (*text == '-' ? 1 : 0);
    const char* digits = p;
    double value = 0;
    while (IsDigit(*p) && p - digits < kExactDigits)
        value = value * 10 + (*p++ - '0');
    if (p == digits || IsDigit(*p) || *p == '.' || isalpha(static_cast<unsigned char>(*p)))
        return strtod(text, behind);
    *behind = p;
    return *text == '-' ? -value : value;
}

}  // namespace

char* skip_ws(char* p) {
    // Most characters are above the blank: no call for them.
    while (static_cast<unsigned char>(*p) <= ' ' && isspace(static_cast<unsigned char>(*p)))
        ++p;
    return p;
}

class JsonParser {
  public:
    explicit JsonParser(char* text) : p_(text) {}

    // Reads a value and stands behind it.
    void Value(JsonObj& node);
    // Reads a name, ends it with a zero in the text and stands behind its closing quote.
    char* Name();
    // Goes over white space and `c`, or throws `complaint`.
    void Expect(char c, const char* complaint);
    // Reads the elements of an array whose opening bracket is behind us.
    void Elements(JsonObj& array);

  private:
    std::unique_ptr<JsonObj> Child(JsonObj& parent);
    void Members(JsonObj& object);
    void String(JsonObj& node);
    void Word(JsonObj& node, const char* word, JsonObj::Type type);
    // Goes over white space and then over `c`, if that stands there.
    bool Accept(char c);

    char* p_;
    int depth_ = 0;
    size_t count_ = 0;
};

bool JsonParser::Accept(char c) {
    p_ = skip_ws(p_);
    if (*p_ != c) return false;
    ++p_;
    return true;
}

void JsonParser::Expect(char c, const char* complaint) {
    if (!Accept(c)) throw complaint;
}

void JsonParser::Value(JsonObj& node) {
    p_ = skip_ws(p_);
    if (*p_ == '{') {
        ++p_;
        node.type = JsonObj::kObject;
        Members(node);
    } else if (*p_ == '[') {
        ++p_;
        node.type = JsonObj::kArray;
        Elements(node);
    } else if (*p_ == '"') {
        ++p_;
        node.type = JsonObj::kString;
        String(node);
    } else if (*p_ == '-' || IsDigit(*p_)) {
        char* behind = p_;
        node.type = JsonObj::kNumber;
        node.number = ReadNumber(p_, &behind);
        if (behind == p_) throw "PARSE7";
        p_ = behind;
    } else if (*p_ == 't') {
        Word(node, "true", JsonObj::kTrue);
    } else if (*p_ == 'f') {
        Word(node, "false", JsonObj::kFalse);
    } else {
        Word(node, "null", JsonObj::kNull);
    }
    node.end = p_ - 1;
}

void JsonParser::Word(JsonObj& node, const char* word, JsonObj::Type type) {
    if (!StartsWith(p_, word)) throw "PARSE7";
    node.type = type;
    p_ += strlen(word);
}

void JsonParser::String(JsonObj& node) {
    for (;;) {
        const char* run = p_;
        while (*p_ != '"' && *p_ != '\\' && *p_ != '\0')
            ++p_;
        if (p_ != run) node.string.Append(run, static_cast<size_t>(p_ - run));
        if (*p_ == '\0') throw "PARSE5";
        if (*p_++ == '"') return;
        const char c = Unescaped(*p_);
        if (c == '\0') throw "PARSE8";
        node.string.Add(c);
        ++p_;
    }
}

char* JsonParser::Name() {
    Expect('"', "PARSE1");
    char* name = p_;
    p_ = strchr(p_, '"');
    if (p_ == nullptr) throw "PARSE2";
    *p_++ = '\0';
    return name;
}

std::unique_ptr<JsonObj> JsonParser::Child(JsonObj& parent) {
    if (depth_ == kDeepest) throw "JSON text nested too deeply";
    if (++count_ > kMostValues) throw "JSON text with too many values";
    std::unique_ptr<JsonObj> child(new JsonObj(&parent, parent.level + 1));
    ++depth_;
    Value(*child);
    --depth_;
    return child;
}

void JsonParser::Members(JsonObj& object) {
    do {
        if (Accept('}')) return;
        char* name = Name();
        Expect(':', "PARSE3");
        std::unique_ptr<JsonObj> child = Child(object);
        child->BorrowName(name);
        object.values.Append(child.release());
    } while (Accept(','));
    Expect('}', "PARSE4");
}

void JsonParser::Elements(JsonObj& array) {
    do {
        if (Accept(']')) return;
        array.AddElement(Child(array));
    } while (Accept(','));
    Expect(']', "PARSE6");
}

JsonObj::JsonObj(char* text, JsonObj* parent_, int level_) : JsonObj(parent_, level_) {
    if (parent == nullptr) {
        if (level != 0) throw "null parent for non top level object";
        name = "__TOP__";
    }
    JsonParser(text).Value(*this);
}

void JsonObj::Expand(char* text) {
    if (type != kArray) throw "attempt to Expand a non-array";
    JsonParser parser(text);
    parser.Name();
    parser.Expect(':', "PARSE3");
    parser.Expect('[', "attempt to Expand with non-array data");
    parser.Elements(*this);
}
