// WebContext.h: one HTTP request as every page sees it: arguments, cookies, session and URLs.
#pragma once

#include <cstdarg>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "cgiFramework/WebSession.h"
#include "common/UStringX.h"
#include "kernel/OSList.h"

class JsonObj;

// One request argument. `value` is decoded text; `data` and `length` refer to the request body.
class WebArgument : public OSListObj {
  public:
    enum Type {
        Normal = 0,   // from the query string or the body
        Global = 1,   // carried into page URLs
        Hidden = 2,   // from the settings file; never put into a URL
        Any = 3,      // a search key only: matches every type
        Context = 4,  // carried into every URL
    };

    UString name;
    UString value;
    UString def_;
    Type type_ = Normal;
    UString content;   // a file part's content type
    UString filename;  // a file part's file name
    const char* data = nullptr;
    int length = 0;
    int depth = 0;

    bool IsKey(const char* key) override { return name == key; }
    // The value, or the default when the value is empty.
    const char* Text() const;
    operator const char*() const { return Text(); }
    // The same read as a decimal number; 0 when it is none.
    int Int() const;
    explicit operator int() const { return Int(); }
    void SetDef(const char* text) { def_ = text; }
    WebArgument& operator=(const char* text);
    WebArgument& operator=(int number);
    bool IsEmpty() const { return *value.c_str() == '\0'; }
    // A check box's "on" or "On" becomes "1", anything else "0".
    void CheckBox();
    // These compare `value`, never the default.
    bool operator==(const char* text) const { return value == text; }
    bool operator!=(const char* text) const { return value != text; }
};

// One cookie; `updated` marks it for the answer's Set-Cookie lines.
class WebCookie : public OSListObj {
  public:
    UString name;
    UString value;
    UString expires;
    UString path;
    UString domain;
    UString secure;
    bool updated = false;

    bool IsKey(const char* key) override { return name == key; }
    operator const char*() const { return value.c_str(); }
    explicit operator int() const { return atoi(value.c_str()); }
    // Stores the text with every byte below 32 percent-encoded and marks the cookie for sending.
    WebCookie& operator=(const char* text);
    // Expires `seconds` from now (an HTTP date in UTC).
    void SetExpires(int seconds);
    // Makes the browser drop the cookie.
    void SetExpired();
    bool operator==(const char* text) const { return value == text; }
    bool operator!=(const char* text) const { return value != text; }
};

// The request. There is one a process; the constructor stores it in `global_context`.
class WebContext {
  public:
    OSList<WebArgument> arguments;
    OSList<WebSessionVar> session_vars;
    OSList<WebCookie> cookies;
    OSList<OSListObj> reports;                // filled by the tabular report engine
    UString argument_string;                  // the latest URL built
    std::unique_ptr<JsonObj> json_post_data;  // the body, when it is JSON
    UString session_id;
    UString session_prefix;
    UString internal_redirect;  // a page of this program to answer next
    UString client_redirect;    // where the browser is sent, or "<back>" or "<ignore>"
    int client_redirect_time = 0;
    UString config;   // path of the settings file
    UString dirname;  // path of the report-definition folder
    int depth = 0;
    struct FreeBytes {
        void operator()(char* bytes) const { free(bytes); }
    };
    std::unique_ptr<char[], FreeBytes> fbuf;  // the request body, read once a process
    void* private_data = nullptr;

    // Null paths stand for "/Norvane/WebConfig.cfg" and "/Norvane/reports/". Throws a text when the
    // request cannot be read.
    WebContext(const char* config, const char* dirname);
    WebContext(const WebContext&) = delete;
    WebContext& operator=(const WebContext&) = delete;

    // Saves the session; a lock that cannot be had is reported on the console.
    virtual ~WebContext();
    // The argument's text, else the session variable's, else "".
    virtual const char* GetVariable(const char* name);
    virtual bool HasVariable(const char* name);
    // Reads what a derived context needs before a page; nothing here.
    virtual void ReadSettings();

    // Replaces the arguments by those of the settings file and of `query`, or, when `query` is
    // null, of the request itself.
    void ScanWebArguments(const char* query);
    // Adds the name=value pairs of `text`; a name that exists already keeps its first value.
    void AddWebArguments(const char* text, WebArgument::Type type);
    // Never null: an argument that is missing is created empty.
    WebArgument* GetWebArgument(const char* name, WebArgument::Type type);
    WebArgument& operator[](const char* name) { return *GetWebArgument(name, WebArgument::Any); }
    bool HasWebArgument(const char* name) const;
    // The argument, or null; creates nothing.
    const WebArgument* FindWebArgument(const char* name) const;
    // The argument's text, else ""; creates nothing.
    const char* ArgumentText(const char* name) const;
    // Is the argument there and not empty?
    bool IsArgumentGiven(const char* name) const { return *ArgumentText(name) != '\0'; }
    // The text of a setting (from the settings file only: never the browser's), or `def`.
    const char* GetSetting(const char* name, const char* def = "") const;
    void SetWebArgument(const char* name, const char* value);
    void SetWebArgument(const char* name, int value);
    // Removes every argument of that name.
    void RemoveWebArgument(const char* name);
    void NewArguments() { ++depth; }
    // Deletes the arguments of deeper levels than the present one; a negative n first goes up one.
    void FlushArguments(int n);
    // Puts the arguments in the order of their names, byte by byte, or without regard to case.
    // Names that differ in case alone then stand byte by byte too, or, when `ambiguous`, as they
    // came.
    void SortWebArguments(bool ignoreCase, bool ambiguous);
    // Does the URL carry this argument with its present value? Compares the unescaped value.
    bool IsSameArgument(const char* name, const char* url);

    void ScanWebCookies();
    WebCookie* GetWebCookie(const char* name);
    bool HasWebCookie(const char* name) const;
    void SetWebCookie(const char* name, const char* value);
    void SetWebCookie(const char* name, int value);

    // URLs of this program. The result lives in the context until the next URL is built. `fmt` may
    // be null; formatted values must already be URL text.
    const char* GetURL(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    const char* GetPageURL(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    const char* GetFullURL(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    const char* GetSpecificURL(const char* fmt, va_list args, bool withScript, bool page, bool full)
        __attribute__((format(printf, 2, 0)));

    // Opens the session named by the request; see WebSession.h for the files.
    void InitSession(const char* prefix, int maxAge, bool inUrl);
    void ScanWebSessionVars(const char* id);
    // Writes the variables to the session's file, if that still exists. Throws the lock's text.
    void SaveWebSessionVars(const char* id);
    void CreateSessionId();
    const char* GetWebSessionId();
    // True when the session's id came from the browser and not from this program, so that whoever
    // gave the browser a link with it knows it.
    bool IsSessionIdForeign() const;
    // Moves the variables to a session with an id that nobody knows; to this request it is not an
    // existing one.
    void RenewSessionId();
    // Ends the session: its file, its variables and its cookie go.
    void DeleteSession();
    WebSessionVar* GetWebSessionVar(const char* name);
    bool HasWebSessionVar(const char* name) const;
    void SetWebSessionVar(const char* name, const char* value);
    void SetWebSessionVar(const char* name, int value);
    void RemoveWebSessionVars(const char* prefix);
    // True when the session was loaded from an existing file of this address in this request.
    bool HasExistingSession() const { return session_loaded_; }

  private:
    void ReadSettingsFile();
    bool ReadBody();
    void AddBodyArguments();
    void AddMultipartArguments(const std::string& boundary);
    WebArgument* Remember(std::unique_ptr<WebArgument> argument);
    void LoadSession(FILE* file);
    WebSessionVar* FindWebSessionVar(const char* name) const;

    // First argument of each name; the keys lie in the arguments' own names.
    std::unordered_map<std::string_view, WebArgument*> by_name_;
    size_t body_length_ = 0;
    bool session_loaded_ = false;
};

extern WebContext* global_context;

// Percent-escapers of URL values: space, "%", "'" and (AppendSafe only) "&" are encoded.
void AppendSafe(UString& out, const char* text);
void AppendSafe2(UString& out, const char* text);

// The position after the next `sep`, or the end of the text.
const char* skipNextSep(const char* p, char sep);
