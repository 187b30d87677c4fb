// What pages make of the directory: drop-down lists, lists and forms.
#include <doctest/doctest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cgiFramework/LDAPDropDown.h"
#include "cgiFramework/LDAPWebDetail.h"
#include "cgiFramework/LDAPWebTable.h"
#include "ldap/LDAPSession.h"
#include "unit/cgiFramework/TestRequest.h"
#include "unit/ldap/ScriptedServer.h"

namespace {

using Attributes = std::vector<std::pair<std::string, std::string>>;

constexpr char kAddress[] = "127.0.0.62";

std::string Tlv(char tag, const std::string& content) {
    return std::string{tag, static_cast<char>(content.size())} + content;
}

std::string Message(char id, char tag, const std::string& content) {
    const std::string bytes = Tlv('\x30', Tlv('\x02', {id}) + Tlv(tag, content));
    return ToHex(Bytes(bytes.begin(), bytes.end()).data(), bytes.size());
}

std::string Result(char id, char tag, char code) {
    return Message(id, tag, Tlv('\x0A', {code}) + Tlv('\x04', "") + Tlv('\x04', ""));
}

std::string Entry(const std::string& dn, const Attributes& attributes) {
    std::string list;
    for (const auto& [name, value] : attributes)
        list += Tlv('\x30', Tlv('\x04', name) + Tlv('\x31', Tlv('\x04', value)));
    return Message(2, '\x64', Tlv('\x04', dn) + Tlv('\x30', list));
}

const std::string kBound = Result(1, '\x61', 0);
const std::string kDone = Result(2, '\x65', 0);

// A signed-in session whose next requests get these answers.
struct ScriptedSession {
    explicit ScriptedSession(std::vector<std::string> answers)
        : server(kAddress, LDAPSession::kPort, WithBind(std::move(answers))),
          session(std::make_unique<LDAPSession>(kAddress, "u", "p", nullptr)) {}
    static std::vector<std::string> WithBind(std::vector<std::string> answers) {
        answers.insert(answers.begin(), kBound);
        return answers;
    }
    // Ends the session: what was sent, in hex.
    std::string Sent() {
        session.reset();
        return server.Requests();
    }

    Reports reports;
    ScriptedServer server;
    std::unique_ptr<LDAPSession> session;
};

std::string Rendered(WebContext& ctx, WebItem& item) {
    UStringWebRender out;
    item.Render(ctx, &out);
    return out.output.c_str();
}

SQLField Field(const char* name, const char* attribute) {
    SQLField field;
    field.name = name;
    field.label = "<b>";
    field.column = attribute;
    field.required = true;
    return field;
}

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string HexOf(const std::string& text) {
    return ToHex(Bytes(text.begin(), text.end()).data(), text.size());
}

}  // namespace

TEST_CASE("a drop-down list offers the entries by name, escaped, with the chosen one selected") {
    TestRequest request;
    WebContext ctx(nullptr, nullptr);
    ScriptedSession directory({Entry("cn=b,cn=Modules", {{"cn", "b<i>"}}) +
                               Entry("cn=\"A\",cn=Modules", {{"cn", "A"}}) +
                               Entry("cn=c", {{"sn", "no name"}}) + kDone});
    LDAPDropDownValue byDn;
    REQUIRE(byDn.Search(*directory.session, "cn=Modules", "(objectclass=Trunk)", "dn"));
    LDAPDropDownList list("trunk", "id=\"trunk\"", byDn, "cn=b,cn=Modules", "All <trunks>");
    const std::string html = Rendered(ctx, list);
    CAPTURE(html);
    const size_t none = html.find("<option value=\"\">All &lt;trunks&gt;</option>");
    const size_t a = html.find("value=\"cn=&quot;A&quot;,cn=Modules\">A<");
    const size_t b = html.find("selected value=\"cn=b,cn=Modules\">b&lt;i&gt;<");
    CHECK(none < a);
    CHECK(a < b);
    CHECK(b != std::string::npos);
}

TEST_CASE("choices come from a whole answer or not at all") {
    const struct {
        const char* what;
        std::string answer;
        bool complete;
        size_t choices;
    } cases[] = {
        {"one entry", Entry("cn=a", {{"cn", "a"}}) + kDone, true, 1},
        {"an entry without attributes hides none behind it",
         Entry("cn=a", {}) + Entry("cn=b", {{"cn", "b"}}) + kDone, true, 1},
        {"nothing found", kDone, true, 0},
        {"no such branch", Result(2, '\x65', 32), true, 0},
        {"cut short by a limit", Entry("cn=a", {{"cn", "a"}}) + Result(2, '\x65', 4), false, 0},
        {"the connection ends", Entry("cn=a", {{"cn", "a"}}), false, 0},
        {"refused", Result(2, '\x65', 50), false, 0},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        ScriptedSession directory({c.answer});
        LDAPDropDownValue value;
        CHECK(value.Search(*directory.session, "", "(objectclass=a)", "cn") == c.complete);
        CHECK(value.choices.size() == c.choices);
        CHECK(directory.reports.Has("SearchDirectory: result") == !c.complete);
    }
}

TEST_CASE("a list of entries is sorted as asked, escaped and linked") {
    const LDAPTableDefinition users = {"Users",
                                       "cn=Users",
                                       "(objectclass=User)",
                                       "cn",
                                       {{"cn", "Name", SQLStyle::kText, "pagename=x&index=[GUID]"},
                                        {"number", "Number", SQLStyle::kNumber}}};
    const std::string answer = Entry("cn=b", {{"cn", "b<b>"}, {"number", "9"}, {"GUID", "1 &"}}) +
                               Entry("cn=A", {{"cn", "A"}, {"number", "10"}}) + kDone;
    const struct {
        const char* query;
        const char* first;
        const char* second;
    } cases[] = {{"", ">A<", "b&lt;b&gt;"},
                 {"sort=number", "b&lt;b&gt;", ">A<"},
                 {"sort=number&desc=1", ">A<", "b&lt;b&gt;"},
                 {"sort=GUID", ">A<", "b&lt;b&gt;"}};
    for (const auto& c : cases) {
        CAPTURE(c.query);
        TestRequest request;
        request.Set("QUERY_STRING", c.query);
        WebContext ctx(nullptr, nullptr);
        ctx.ScanWebArguments(nullptr);
        ScriptedSession directory({answer});
        LDAPWebTable list(ctx, *directory.session, users);
        const std::string html = Rendered(ctx, list);
        CAPTURE(html);
        CHECK(html.find(c.first) < html.find(c.second));
        CHECK(html.find(c.second) != std::string::npos);
        CHECK(Holds(html, "pagename=x&amp;index=1%20%26\""));
        CHECK_FALSE(Holds(html, "<b>"));
    }
}

TEST_CASE("a form over an entry writes what differs, to the entry's GUID, and nothing else") {
    const std::string answer =
        Entry("cn=a", {{"GUID", "g1"}, {"cn", "a"}, {"mail", "x"}, {"fax", "1"}, {"_fax", "2"}}) +
        kDone;
    const LDAPDetailDefinition user = {
        "", "(GUID=g1)", {Field("name", "cn"), Field("mail", "mail"), Field("fax", "fax")}};
    using Outcome = LDAPWebDetail::Outcome;
    const struct {
        const char* what;
        const char* query;
        bool genuine;
        std::vector<std::string> answers;
        Outcome outcome;
        std::vector<std::string> sent;  // in the requests behind the search
        const char* shown;
    } cases[] = {
        {"shown", "", true, {answer}, Outcome::kForm, {}, "value=\"x\""},
        {"nothing differs", "submit=Save&name=a&mail=x", true, {answer}, Outcome::kSaved, {}, ""},
        {"one attribute",
         "submit=Save&name=a&mail=new&fax=9",
         true,
         {answer, Result(3, '\x67', 0)},
         Outcome::kSaved,
         {"GUID=g1", "mail", "new"},
         ""},
        {"the name",
         "submit=Save&name=b&mail=x",
         true,
         {answer, Result(3, '\x6D', 0)},
         Outcome::kSaved,
         {"GUID=g1", "cn=b"},
         ""},
        {"a name that is taken stops the rest",
         "submit=Save&name=b&mail=new",
         true,
         {answer, Result(3, '\x6D', 68)},
         Outcome::kForm,
         {"cn=b"},
         "did not take the change"},
        {"not from a session",
         "submit=Save&name=a&mail=new",
         false,
         {answer},
         Outcome::kForm,
         {},
         "your session had ended"},
        {"an empty field",
         "submit=Save&name=a&mail=",
         true,
         {answer},
         Outcome::kForm,
         {},
         "Nothing was saved yet"},
        {"no entry", "", true, {kDone}, Outcome::kMissing, {}, ""},
        {"no answer", "", true, {""}, Outcome::kFailed, {}, "cannot be read"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        TestRequest request;
        request.Set("REQUEST_METHOD", "POST");
        request.Set("QUERY_STRING", c.query);
        WebContext ctx(nullptr, nullptr);
        ctx.ScanWebArguments(nullptr);
        ScriptedSession directory(c.answers);
        LDAPWebDetail form(ctx, *directory.session, user, {c.genuine, ""});
        CHECK(form.outcome() == c.outcome);
        const std::string html = Rendered(ctx, form);
        CAPTURE(html);
        CHECK(Holds(html, c.shown));
        CHECK_FALSE(Holds(html, "<b>"));

        const std::string sent = directory.Sent();
        for (const std::string& text : c.sent)
            CHECK(Holds(sent, HexOf(text)));
        CHECK(Holds(sent, HexOf("new")) == (c.sent.size() == 3));
        CHECK_FALSE(Holds(sent, HexOf("fax")));
    }
}
