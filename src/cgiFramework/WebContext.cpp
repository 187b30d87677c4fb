#include "cgiFramework/WebContext.h"

#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#include "cgiFramework/JsonObj.h"
#include "common/Path.h"
#include "kernel/OSBTree.h"
#include "kernel/OSConsole.h"

WebContext* global_context = nullptr;

namespace {

constexpr char kDefaultConfig[] = "/Norvane/WebConfig.cfg";
constexpr char kDefaultReports[] = "/Norvane/reports/";
// An argument takes hundreds of bytes where a body may spend five on it.
constexpr size_t kMostArguments = 500'000;

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return 0;  // digits are not checked: what is none counts as 0
}

// Decodes one character of a name or value at `p` and moves behind it. A decoded zero byte is
// dropped, since every text here ends at one.
void DecodeInto(std::string& out, const char*& p) {
    if (*p == '+') {
        out += ' ';
        ++p;
    } else if (p[0] == '%' && p[1] == '%') {
        out += '%';
        p += 2;
    } else if (p[0] == '%' && p[1] != '\0' && p[2] != '\0') {
        const char byte = static_cast<char>(HexDigit(p[1]) << 4 | HexDigit(p[2]));
        if (byte != '\0') out += byte;
        p += 3;
    } else {
        out += *p++;
    }
}

bool IsSeparator(char c) {
    return c == '&' || c == '\r' || c == '\n';
}

// Decodes a value up to an "&" outside quotes (in a settings file also up to a line end). Only
// quote characters that stand raw in the text count; encoded ones are data.
void DecodeValue(std::string& out, const char*& p, bool linesEndValues) {
    bool inDouble = false;
    bool inSingle = false;
    while (*p != '\0') {
        const bool quoted = inDouble || inSingle;
        if (!quoted && (*p == '&' || (linesEndValues && IsSeparator(*p)))) return;
        if (*p == '"') inDouble = !inDouble;
        if (*p == '\'') inSingle = !inSingle;
        DecodeInto(out, p);
    }
}

void AppendEscaped(std::string& out, const char* text, bool ampersands) {
    for (; *text != '\0'; ++text) {
        switch (*text) {
            case ' ':
                out += "%20";
                break;
            case '%':
                out += "%25";
                break;
            case '\'':
                out += "%27";
                break;
            case '&':
                out += ampersands ? "%26" : "&";
                break;
            default:
                out += *text;
        }
    }
}

// A name that could break out of a URL or of the line or attribute it is written to.
bool IsUnsafeName(const char* name) {
    for (; *name != '\0'; ++name) {
        const unsigned char c = static_cast<unsigned char>(*name);
        if (c < 32 || c == '"' || c == '<' || c == '>' || c == '&') return true;
    }
    return false;
}

// The place of an argument in the order of names.
struct WebIndexObj : OSBTreeObj {
    WebIndexObj(WebArgument& argument_, bool ignoreCase_, bool ambiguous_)
        : argument(argument_), ignoreCase(ignoreCase_), ambiguous(ambiguous_) {}

    int Compare(const OSBTreeObj& other) const override {
        const char* mine = argument.name.c_str();
        const char* theirs = static_cast<const WebIndexObj&>(other).argument.name.c_str();
        const int order = ignoreCase ? strcasecmp(mine, theirs) : strcmp(mine, theirs);
        return order != 0 || ambiguous ? order : strcmp(mine, theirs);
    }

    WebArgument& argument;
    bool ignoreCase;
    bool ambiguous;
};

bool IsWritten(const WebArgument& argument, bool page, bool full) {
    switch (argument.type_) {
        case WebArgument::Context:
            return true;
        case WebArgument::Global:
            return page;
        case WebArgument::Normal:
            return full;
        default:
            return false;
    }
}

}  // namespace

// ---- arguments

const char* WebArgument::Text() const {
    return IsEmpty() ? def_.c_str() : value.c_str();
}

int WebArgument::Int() const {
    return static_cast<int>(strtol(Text(), nullptr, 10));
}

WebArgument& WebArgument::operator=(const char* text) {
    value = text;
    return *this;
}

WebArgument& WebArgument::operator=(int number) {
    value.Format("%d", number);
    return *this;
}

void WebArgument::CheckBox() {
    value = value == "on" || value == "On" ? "1" : "0";
}

WebContext::WebContext(const char* config_, const char* dirname_)
    : config(config_ != nullptr ? config_ : kDefaultConfig),
      dirname(dirname_ != nullptr ? dirname_ : kDefaultReports) {
    global_context = this;
    try {
        ScanWebArguments(nullptr);
        ScanWebCookies();
    } catch (...) {
        global_context = nullptr;
        throw;
    }
}

WebContext::~WebContext() {
    try {
        SaveWebSessionVars(nullptr);
    } catch (const char* text) {
        ConsoleReport("WebContext: the session was not saved: %s\n", text);
    }
    if (global_context == this) global_context = nullptr;
}

const char* WebContext::GetVariable(const char* name) {
    if (const WebArgument* argument = FindWebArgument(name)) return argument->Text();
    return HasWebSessionVar(name) ? GetWebSessionVar(name)->Text() : "";
}

bool WebContext::HasVariable(const char* name) {
    return HasWebArgument(name) || HasWebSessionVar(name);
}

void WebContext::ReadSettings() {}

void WebContext::ScanWebArguments(const char* query) {
    // The query may lie in an argument that goes now.
    const std::string given = query != nullptr ? query : "";
    by_name_.clear();
    arguments.Clear();
    ReadSettingsFile();
    if (query != nullptr) {
        AddWebArguments(given.c_str(), WebArgument::Normal);
    } else {
        AddWebArguments(getenv("QUERY_STRING"), WebArgument::Normal);
        AddBodyArguments();
    }
    const auto session = by_name_.find("sessionId");
    if (session != by_name_.end()) session->second->type_ = WebArgument::Context;
}

// Settings come first, so that no request can replace one.
void WebContext::ReadSettingsFile() {
    FILE* file = fopen(RootPath(config.c_str()).c_str(), "re");
    if (file == nullptr) return;
    std::string text;
    char block[4096];
    // The text ends at the first zero byte: nothing behind it could count.
    while (text.find('\0') == std::string::npos) {
        const size_t got = fread(block, 1, sizeof block, file);
        if (got == 0) break;
        text.append(block, got);
    }
    fclose(file);
    AddWebArguments(text.c_str(), WebArgument::Hidden);
}

void WebContext::AddWebArguments(const char* text, WebArgument::Type type) {
    if (text == nullptr) return;
    const char* p = text;
    std::string name;
    std::string value;
    while (IsSeparator(*p))
        ++p;
    while (*p != '\0') {
        name.clear();
        value.clear();
        while (*p != '\0' && *p != '=')
            DecodeInto(name, p);
        if (*p == '=') ++p;
        DecodeValue(value, p, /*linesEndValues=*/type == WebArgument::Hidden);
        while (IsSeparator(*p))
            ++p;
        if (by_name_.count(name) != 0) continue;
        auto argument = std::make_unique<WebArgument>();
        argument->name = name.c_str();
        argument->value = value.c_str();
        argument->type_ = type;
        argument->depth = depth;
        Remember(std::move(argument));
    }
}

// Appends the argument and indexes it when it is the first of its name.
WebArgument* WebContext::Remember(std::unique_ptr<WebArgument> argument) {
    if (arguments.size() == kMostArguments) throw "The request has too many arguments.";
    WebArgument* remembered = argument.release();
    arguments.Append(remembered);
    by_name_.emplace(remembered->name.c_str(), remembered);
    return remembered;
}

WebArgument* WebContext::GetWebArgument(const char* name, WebArgument::Type type) {
    const auto first = by_name_.find(name);
    if (first != by_name_.end()) {
        if (type == WebArgument::Any || first->second->type_ == type) return first->second;
        for (WebArgument& argument : arguments) {
            if (argument.type_ == type && argument.name == name) return &argument;
        }
    }
    auto created = std::make_unique<WebArgument>();
    created->name = name;
    created->depth = depth;
    created->type_ = type == WebArgument::Any ? WebArgument::Normal : type;
    return Remember(std::move(created));
}

const WebArgument* WebContext::FindWebArgument(const char* name) const {
    const auto found = by_name_.find(name);
    return found != by_name_.end() ? found->second : nullptr;
}

const char* WebContext::ArgumentText(const char* name) const {
    const WebArgument* argument = FindWebArgument(name);
    return argument != nullptr ? argument->Text() : "";
}

bool WebContext::HasWebArgument(const char* name) const {
    return FindWebArgument(name) != nullptr;
}

const char* WebContext::GetSetting(const char* name, const char* def) const {
    const WebArgument* setting = FindWebArgument(name);
    if (setting == nullptr || setting->type_ != WebArgument::Hidden || setting->IsEmpty())
        return def;
    return setting->value.c_str();
}

void WebContext::SetWebArgument(const char* name, const char* value) {
    (*this)[name] = value;
}

void WebContext::SetWebArgument(const char* name, int value) {
    (*this)[name] = value;
}

void WebContext::RemoveWebArgument(const char* name) {
    const UString wanted(name);  // `name` may lie in an argument that goes
    by_name_.erase(wanted.c_str());
    for (WebArgument* argument = arguments.First(); argument != nullptr;) {
        auto* next = static_cast<WebArgument*>(argument->next());
        if (argument->name == wanted) arguments.Remove(argument);
        argument = next;
    }
}

void WebContext::FlushArguments(int n) {
    if (n < 0 && depth > 0) --depth;
    for (WebArgument* argument = arguments.First(); argument != nullptr;) {
        auto* next = static_cast<WebArgument*>(argument->next());
        if (argument->depth > depth) {
            const auto indexed = by_name_.find(argument->name.c_str());
            if (indexed != by_name_.end() && indexed->second == argument) by_name_.erase(indexed);
            arguments.Remove(argument);
        }
        argument = next;
    }
}

void WebContext::SortWebArguments(bool ignoreCase, bool ambiguous) {
    OSBTree tree;
    for (WebArgument& argument : arguments)
        tree.Insert(std::make_unique<WebIndexObj>(argument, ignoreCase, ambiguous));
    // Moving each to the end leaves them in the order of the keys.
    for (const auto& key : tree) {
        WebArgument& argument = static_cast<WebIndexObj&>(*key).argument;
        arguments.Unlink(&argument);
        arguments.Append(&argument);
    }
}

bool WebContext::IsSameArgument(const char* name, const char* url) {
    if (url == nullptr) return false;
    const char* query = skipNextSep(url, '?');
    const size_t nameLength = strlen(name);
    for (const char* p = query; *p != '\0'; p = skipNextSep(p, '&')) {
        if (strncasecmp(p, name, nameLength) != 0 || p[nameLength] != '=') continue;
        const char* value = ArgumentText(name);
        const size_t length = strlen(value);
        const char* text = p + nameLength + 1;
        return strncmp(text, value, length) == 0 && (text[length] == '&' || text[length] == '\0');
    }
    return false;
}

const char* skipNextSep(const char* p, char sep) {
    while (*p != '\0' && *p != sep)
        ++p;
    return *p == sep && sep != '\0' ? p + 1 : p;
}

// ---- cookies

WebCookie& WebCookie::operator=(const char* text) {
    std::string encoded;
    for (const char* p = text != nullptr ? text : ""; *p != '\0'; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        char hex[4];
        if (c < 32) {
            snprintf(hex, sizeof hex, "%%%02X", c);
            encoded += hex;
        } else {
            encoded += *p;
        }
    }
    value = encoded.c_str();
    updated = true;
    return *this;
}

void WebCookie::SetExpires(int seconds) {
    static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const time_t when = time(nullptr) + seconds;
    tm utc{};
    gmtime_r(&when, &utc);
    expires.Format("%s, %02d-%s-%04d %02d:%02d:%02d GMT", days[utc.tm_wday], utc.tm_mday,
                   months[utc.tm_mon], utc.tm_year + 1900, utc.tm_hour, utc.tm_min, utc.tm_sec);
    updated = true;
}

void WebCookie::SetExpired() {
    expires = "Sat, 16-Sep-2006 00:00:00 GMT";
    updated = true;
}

void WebContext::ScanWebCookies() {
    cookies.Clear();
    const char* p = getenv("HTTP_COOKIE");
    if (p == nullptr) return;
    while (*p != '\0') {
        const size_t nameLength = strcspn(p, "=;");
        auto cookie = std::make_unique<WebCookie>();
        cookie->name = std::string(p, nameLength).c_str();
        p += nameLength;
        if (*p == '=') {
            ++p;
            const size_t valueLength = strcspn(p, ";");
            cookie->value = std::string(p, valueLength).c_str();
            p += valueLength;
        }
        if (*p == ';') ++p;
        while (*p == ' ')
            ++p;
        cookies.Append(cookie.release());
    }
}

WebCookie* WebContext::GetWebCookie(const char* name) {
    for (WebCookie& cookie : cookies) {
        if (cookie.name == name) return &cookie;
    }
    auto created = std::make_unique<WebCookie>();
    created->name = name;
    cookies.Append(created.get());
    return created.release();
}

bool WebContext::HasWebCookie(const char* name) const {
    for (const WebCookie& cookie : cookies) {
        if (cookie.name == name) return true;
    }
    return false;
}

void WebContext::SetWebCookie(const char* name, const char* value) {
    *GetWebCookie(name) = value;
}

void WebContext::SetWebCookie(const char* name, int value) {
    UString text;
    text.Format("%d", value);
    SetWebCookie(name, text.c_str());
}

// ---- URLs

void AppendSafe(UString& out, const char* text) {
    std::string escaped;
    if (text != nullptr) AppendEscaped(escaped, text, /*ampersands=*/true);
    out.Append(escaped.data(), escaped.size());
}

void AppendSafe2(UString& out, const char* text) {
    std::string escaped;
    if (text != nullptr) AppendEscaped(escaped, text, /*ampersands=*/false);
    out.Append(escaped.data(), escaped.size());
}

const char* WebContext::GetSpecificURL(const char* fmt, va_list args, bool withScript, bool page,
                                       bool full) {
    // Formatted first: an argument may lie in the buffer that the result replaces.
    UString extra;
    if (fmt != nullptr) extra.vFormat(fmt, args);
    const char* script = getenv("SCRIPT_NAME");
    std::string url = withScript && script != nullptr ? script : "";
    char separator = '?';
    for (const WebArgument& argument : arguments) {
        if (!IsWritten(argument, page, full) || argument.IsEmpty()) continue;
        const std::string pairStart = std::string(argument.name.c_str()) + "=";
        if (strcasestr(extra.c_str(), pairStart.c_str()) != nullptr) continue;
        if (IsUnsafeName(argument.name.c_str())) continue;
        url += separator;
        url += pairStart;
        AppendEscaped(url, argument.value.c_str(), /*ampersands=*/true);
        separator = '&';
    }
    if (!extra.IsEmpty()) {
        url += separator;
        AppendEscaped(url, extra.c_str(), /*ampersands=*/false);
    }
    argument_string = url.c_str();
    return argument_string.c_str();
}

const char* WebContext::GetURL(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const char* url =
        GetSpecificURL(fmt, args, /*withScript=*/true, /*page=*/false, /*full=*/false);
    va_end(args);
    return url;
}

const char* WebContext::GetPageURL(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const char* url = GetSpecificURL(fmt, args, /*withScript=*/true, /*page=*/true, /*full=*/false);
    va_end(args);
    return url;
}

const char* WebContext::GetFullURL(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const char* url = GetSpecificURL(fmt, args, /*withScript=*/true, /*page=*/true, /*full=*/true);
    va_end(args);
    return url;
}
