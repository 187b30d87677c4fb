#include "cgiFramework/JSONText.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "cgiFramework/JSONPage.h"
#include "common/Parse.h"
#include "kernel/OSConsole.h"

namespace {

constexpr char kBraces[] = "JSON String did Not Parse ({})";
constexpr char kBrackets[] = "JSON String did Not Parse ([])";
constexpr char kQuotes[] = "JSON String did Not Parse (\")";
constexpr int kDeepest = 512;

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// The letter of the two-byte escape of `c`, or 0.
char EscapeLetter(char c) {
    switch (c) {
        case '\\':
        case '"':
        case '/':
            return c;
        case '\b':
            return 'b';
        case '\f':
            return 'f';
        case '\n':
            return 'n';
        case '\t':
            return 't';
        default:
            return '\0';
    }
}

}  // namespace

void AppendJSONEscaped(std::string& out, char c) {
    const unsigned char byte = static_cast<unsigned char>(c);
    if (const char letter = EscapeLetter(c)) {
        out += '\\';
        out += letter;
    } else if (byte < ' ' && c != '\r') {
        char hex[8];
        snprintf(hex, sizeof hex, "\\u%04X", byte);
        out += hex;
    } else {
        out += c;
    }
}

void CheckJSONBalance(const char* text) {
    int braces = 0;
    int brackets = 0;
    int quotes = 0;
    char before = '\0';
    for (const char* p = text; *p != '\0'; before = *p++) {
        braces += (*p == '{') - (*p == '}');
        brackets += (*p == '[') - (*p == ']');
        quotes += *p == '"' && before != '\\';
    }
    if (braces != 0) throw kBraces;
    if (brackets != 0) throw kBrackets;
    if (quotes % 2 != 0) {
        ConsoleReport("Number of double quotes = %i", quotes);
        throw kQuotes;
    }
}

bool JSONTextReader::Accept(char c) {
    while (IsSpace(*p_))
        ++p_;
    if (*p_ != c) return false;
    ++p_;
    return true;
}

void JSONTextReader::Expect(char c, const char* complaint) {
    if (!Accept(c)) throw complaint;
}

void JSONTextReader::Document(JSONObject& top) {
    Expect('{', kBraces);
    Members(top);
    // Nothing but white space may follow.
    while (IsSpace(*p_))
        ++p_;
    if (*p_ != '\0') throw kBraces;
}

void JSONTextReader::Members(JSONItem& object) {
    if (Accept('}')) return;
    do {
        Expect('"', kQuotes);
        const std::string name = String();
        Expect(':', kBraces);
        std::unique_ptr<WebItem> value = Value(kBraces);
        object.Add(new JSONPair(name.c_str(), value.release()));
    } while (Accept(','));
    Expect('}', kBraces);
}

void JSONTextReader::Elements(JSONItem& array) {
    if (Accept(']')) return;
    do {
        array.Add(Value(kBrackets).release());
    } while (Accept(','));
    Expect(']', kBrackets);
}

std::unique_ptr<WebItem> JSONTextReader::Value(const char* complaint) {
    if (Accept('{')) return Nested(std::make_unique<JSONObject>(), &JSONTextReader::Members);
    if (Accept('[')) return Nested(std::make_unique<JSONArray>(), &JSONTextReader::Elements);
    const bool quoted = Accept('"');
    const std::string text = quoted ? String() : Bare();
    if (!quoted && text.empty()) throw complaint;
    auto value = std::make_unique<JSONValue>(UString(), /*raw=*/!quoted);
    value->value = text.c_str();
    return value;
}

std::unique_ptr<WebItem> JSONTextReader::Nested(std::unique_ptr<JSONItem> item,
                                                void (JSONTextReader::*content)(JSONItem&)) {
    if (++depth_ > kDeepest) throw item->isJSONObject() ? kBraces : kBrackets;
    (this->*content)(*item);
    --depth_;
    return item;
}

std::string JSONTextReader::String() {
    std::string text;
    while (*p_ != '"') {
        if (*p_ == '\0') throw kQuotes;
        if (*p_ == '\\')
            text += Escape();
        else if (static_cast<unsigned char>(*p_) < ' ')
            AppendJSONEscaped(text, *p_++);
        else
            text += *p_++;
    }
    ++p_;
    return text;
}

std::string JSONTextReader::Escape() {
    size_t length = 2;
    if (p_[1] == 'u') {
        for (length = 2; length < 6; ++length)
            if (!isxdigit(static_cast<unsigned char>(p_[length]))) throw kQuotes;
    } else if (p_[1] == '\0' || strchr("\"\\/bfnrt", p_[1]) == nullptr) {
        throw kQuotes;
    }
    const std::string escape(p_, length);
    p_ += length;
    return escape;
}

std::string JSONTextReader::Bare() {
    for (const char* word : {"true", "false", "null"}) {
        const size_t length = strlen(word);
        if (strncmp(p_, word, length) != 0) continue;
        p_ += length;
        return word;
    }
    return Number();
}

std::string JSONTextReader::Digits() {
    const char* first = p_;
    while (IsDigit(*p_))
        ++p_;
    return std::string(first, p_);
}

std::string JSONTextReader::Number() {
    const char* first = p_;
    if (*p_ == '-') ++p_;
    const std::string whole = Digits();
    if (whole.empty() || (whole.size() > 1 && whole[0] == '0')) return "";
    if (*p_ == '.') {
        ++p_;
        if (Digits().empty()) return "";
    }
    if (*p_ == 'e' || *p_ == 'E') {
        ++p_;
        if (*p_ == '+' || *p_ == '-') ++p_;
        if (Digits().empty()) return "";
    }
    return std::string(first, p_);
}
