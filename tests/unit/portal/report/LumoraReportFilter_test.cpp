#include "portal/report/LumoraReportFilter.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "cgiFramework/LDAPDropDown.h"
#include "cgiFramework/WebPage.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportSQLCol.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

using Filter = LumoraReportFilter;
using Text = UString Filter::*;

constexpr char kConfig[] = "/Norvane/config/Lumora.cfg";

// The criteria of a request with that query string.
Filter FromQuery(const char* query) {
    TestRequest request;
    request.Set("QUERY_STRING", query);
    PortalContext ctx(kConfig, nullptr);
    return Filter(ctx, /*fromSession=*/false);
}

std::string Problems(const Filter& filter) {
    std::string fields;
    for (const FilterProblem& problem : filter.Check())
        fields.append(fields.empty() ? "" : " ").append(problem.field);
    return fields;
}

std::string Rendered(WebContext& ctx, WebItem* item) {
    const std::unique_ptr<WebItem> owned(item);
    UStringWebRender out;
    owned->Render(ctx, &out);
    return out.output.c_str();
}

bool Holds(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST_CASE("the search box decides the entity, and without it each kind has its own argument") {
    const struct {
        const char* what;
        const char* query;
        Text text;
        const char* expected;
    } cases[] = {
        {"user", "searchtype=user&suggest1=Ann", &Filter::userfilter, "Ann"},
        {"department", "searchtype=dept&suggest1=Sales", &Filter::department, "Sales"},
        {"group", "searchtype=group&suggest1=North", &Filter::group, "North"},
        {"company", "searchtype=company&suggest1=Acme", &Filter::company, "Acme"},
        {"contact", "searchtype=contact&suggest1=555", &Filter::contact, "555"},
        {"agent", "searchtype=agent&suggest1=Bob", &Filter::agentFilter, "Bob"},
        {"queue", "searchtype=queue&suggest1=Help", &Filter::queueFilter, "Help"},
        {"inbox", "searchtype=inbox&suggest1=Mail", &Filter::inboxName, "Mail"},
        {"free text stays text", "searchtype=freetext&suggest1=x", &Filter::suggest1, "x"},
        {"the search empties the others", "searchtype=user&suggest1=Ann&department=Sales",
         &Filter::department, ""},
        {"an unknown kind sets nothing", "searchtype=x&suggest1=Ann", &Filter::userfilter, ""},
        {"no kind: the search text is no entity", "suggest1=Ann", &Filter::userfilter, ""},
        {"own argument", "searchtype=&department=Sales&suggest1=Ann", &Filter::department, "Sales"},
        {"inbox by id", "inboxid=inb_1", &Filter::inboxId, "inb_1"},
        {"a tag beside the search", "searchtype=user&suggest1=Ann&tag=vip", &Filter::tagFilter,
         "vip"},
        {"second search", "A_searchtype=dept&A_suggest1=Sales&userfilter2=Ann",
         &Filter::department2, "Sales"},
        {"second search empties the others", "A_searchtype=dept&A_suggest1=Sales&userfilter2=Ann",
         &Filter::userfilter2, ""},
        {"second own argument", "group2=North", &Filter::group2, "North"},
        {"an empty limit is none", "timeLimit=", &Filter::timeLimit, "-1"},
        {"a limit", "timeLimit=30", &Filter::timeLimit, "30"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(FromQuery(c.query).*c.text == c.expected);
    }
    CHECK(FromQuery("graphonly=0").graphonly);
    CHECK_FALSE(FromQuery("graphonly=&tableonly=1").graphonly);
    CHECK(FromQuery("graphonly=&tableonly=1").tableonly);
}

TEST_CASE("reading the criteria creates neither arguments nor a session") {
    TestRequest request;
    PortalContext ctx(kConfig, nullptr);
    ctx.InitSession("Lumora", 0, /*inUrl=*/true);
    const Filter fromArguments(ctx, /*fromSession=*/false);
    const Filter fromSession(ctx, /*fromSession=*/true);
    CHECK_FALSE(ctx.HasWebArgument("userfilter"));
    CHECK(ctx.session_vars.empty());
}

TEST_CASE("the session gives back what was saved, and some criteria are never saved") {
    TestRequest request;
    PortalContext ctx(kConfig, nullptr);
    ctx.InitSession("Lumora", 0, /*inUrl=*/true);
    // Read as well, but links carry these themselves.
    const struct {
        const char* name;
        Text text;
    } readOnly[] = {
        {"group", &Filter::group},           {"var", &Filter::var},
        {"trunk", &Filter::trunk},           {"report", &Filter::report},
        {"suggest1", &Filter::suggest1},     {"contact", &Filter::contact},
        {"searchtype", &Filter::searchtype}, {"inboxName", &Filter::inboxName},
        {"inboxId", &Filter::inboxId},       {"ddi", &Filter::ddi},
    };
    Filter filter;
    filter.reportPeriod = "lastmonth";
    filter.userfilter = "Ann";
    filter.contact6 = "555";
    filter.extra2 = "not kept at all";
    for (const auto& entry : readOnly)
        filter.*entry.text = "here";
    filter.SaveToSession(ctx);

    Filter loaded(ctx, /*fromSession=*/true);
    CHECK(loaded.reportPeriod == "lastmonth");
    CHECK(loaded.userfilter == "Ann");
    CHECK(loaded.contact6 == "555");
    CHECK(loaded.timeLimit == "-1");
    CHECK(loaded.extra2.IsEmpty());
    for (const auto& entry : readOnly) {
        CAPTURE(entry.name);
        CHECK((loaded.*entry.text).IsEmpty());
        const UString variable = UString("vFilter.") + entry.name;
        CHECK_FALSE(ctx.HasWebSessionVar(variable.c_str()));
        ctx.SetWebSessionVar(variable.c_str(), "kept");
    }
    loaded = Filter(ctx, /*fromSession=*/true);
    for (const auto& entry : readOnly) {
        CAPTURE(entry.name);
        CHECK(loaded.*entry.text == "kept");
    }
}

TEST_CASE("the arguments of a link give the same criteria back, and those alone") {
    const std::string hostile = "+%26%23%25'%22[date]%5C%C3%A9%0A%3C/a%3E";
    const struct {
        const char* what;
        std::string query;
        const char* arguments;
    } cases[] = {
        {"nothing given", "report=r&reportTitle=t&submit=s&save=on&graphonly=1&timeLimit=", ""},
        {"the search", "searchtype=dept&suggest1=Sales&userfilter=Ann",
         "&suggest1=Sales&searchtype=dept"},
        {"a kind for all", "searchtype=dept&suggest1=", "&searchtype=dept"},
        {"entities of their own", "userfilter=Ann&inbox=Mail&inboxid=7&group2=North",
         "&userfilter=Ann&inbox=Mail&inboxid=7&group2=North"},
        {"the second search", "A_searchtype=user&A_suggest1=Bob&group2=North",
         "&A_searchtype=user&A_suggest1=Bob"},
        {"all the rest", "globcb1=on&internal=on&contact6=1&timeLimit=5&tag=a&ddi=2&markup=3",
         "&tag=a&internal=on&timeLimit=5&contact6=1&ddi=2&globcb1=on"},
        {"any text", "tag=" + hostile, "&tag=%20%26%23%25%27%22%5Bdate%5D%5C%C3%A9%0A%3C%2Fa%3E"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Filter filter = FromQuery(c.query.c_str());
        UString url("x?");
        filter.AppendArguments(url);
        CHECK(url == UString("x?") + c.arguments);
        UString again;
        FromQuery(c.arguments).AppendArguments(again);
        CHECK(again == c.arguments);
    }
    // An uplift of none must not become the customer's.
    Filter costs;
    costs.hasMarkup = true;
    costs.vatrate = "20";
    UString url;
    costs.AppendArguments(url);
    CHECK(url == "&markup=&vatrate=20");
}

TEST_CASE("criteria that cannot be used are named") {
    const struct {
        const char* what;
        const char* query;
        const char* fields;
    } cases[] = {
        {"nothing given", "", ""},
        {"all well",
         "startDate=2024-02-28&endDate=2024-02-29&timeLimit=60&slaID=3&markup=-2.5"
         "&vatrate=17.5&inOutFilter=Inbound&searchtype=user&begintime=830",
         ""},
        {"one day", "startDate=2024-02-29", ""},
        {"no such day", "startDate=2023-02-29", "startDate"},
        {"SQL in a date", "startDate=2024-01-01&endDate=') OR ('1", "endDate"},
        {"end without start", "endDate=2024-01-01", "startDate"},
        {"nonsense start, good end", "startDate=x&endDate=2024-01-01", "startDate"},
        {"end before start", "startDate=2024-03-02&endDate=2024-03-01", "endDate"},
        {"times of one day", "startDate=2024-03-01 10:00:00&endDate=2024-03-01", ""},
        {"exact times", "wbDrill=y&startDate=2024-03-01 10:00:00&endDate=2024-03-01 09:00:00",
         "endDate"},
        {"unknown period means today", "reportPeriod=nonsense", ""},
        {"limit", "timeLimit=1 OR 1", "timeLimit"},
        {"negative limit", "timeLimit=-2", "timeLimit"},
        {"SLA", "slaID=-1", "slaID"},
        {"uplift and VAT", "markup=1e3&vatrate=1.", "markup vatrate"},
        {"direction", "inOutFilter=Sideways", "inOutFilter"},
        {"a kind that the report has not", "searchtype=dept&suggest1=Sales", "searchtype"},
        {"free text needs no kind", "searchtype=freetext", ""},
        {"a second kind that the form has not", "A_searchtype=queue", "A_searchtype"},
        {"no entity", "mandatory=1&searchtype=user", "suggest1"},
        {"an entity of another kind", "mandatory=1&department=Sales", "suggest1"},
        {"an entity", "mandatory=1&userfilter=Ann", ""},
        {"all, whatever stands there", "mandatory=1&globcb1=on", ""},
        {"no contact", "contacts=1&contact=&contact2=", "contact1"},
        {"one contact", "contacts=1&contact6=555", ""},
        {"a contact searched for", "contacts=1&searchtype=contact&suggest1=555", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Filter filter = FromQuery(c.query);
        filter.hasUser = true;
        filter.mandatoryEntity = Holds(c.query, "mandatory=1");
        filter.hasContact = filter.mandatoryContact = Holds(c.query, "contacts=1");
        CHECK(Problems(filter) == c.fields);
    }
    const std::string tooLong = "ddi=" + std::string(10000, '%') + "&tag=" + std::string(1020, 'x');
    CHECK(Problems(FromQuery(tooLong.c_str())) == "ddi");
    std::string together;
    for (const char* name : {"contact1=", "contact2=", "contact3=", "account=", "tag=", "extra="})
        together += name + std::string(960, 'x') + "&";
    CHECK(Problems(FromQuery(together.c_str())).empty());
    CHECK(Problems(FromQuery((together + "ddi=" + std::string(961, 'y')).c_str())) == "ddi");
}

TEST_CASE("the header names selector, tag, drilled column and call type") {
    TestRequest request;
    request.Set("QUERY_STRING", "field=TALK");
    PortalContext ctx(kConfig, nullptr);
    LumoraSQLColumnDescription columns[] = {
        {"calls", "number", "Calls", "", "", "", "", "", ""},
        {"talk", "time", "Talking", "", "", "Times", "", "", ""},
        {"", "", "", "", "", "", "", "", ""},
        {"TALK", "", "beyond the end", "", "", "", "", "", ""},
    };
    Filter filter;
    UString header;
    filter.GetHeader(ctx, columns, header);
    CHECK(header == "Times / Talking");

    filter.var = "Trunk 1";
    filter.hasTag = filter.hasInternalExternal = true;
    filter.tagFilter = "vip";
    filter.internal = "on";
    filter.GetHeader(ctx, columns, header);
    CHECK(header == "Trunk 1 / vip / Times / Talking / Internal");

    filter.external = "on";
    filter.GetHeader(ctx, columns + 2, header);
    CHECK(header == "Trunk 1 / vip");
}

TEST_CASE("the form offers the report's rows, keeps what was typed and escapes it") {
    TestRequest request;
    request.Set("QUERY_STRING", "report=callsbyuser&pagename=callreport");
    PortalContext ctx(kConfig, nullptr);
    Filter offered;
    offered.hasSecondForField = offered.hasTag = offered.mandatoryEntity = true;
    Filter current;
    current.reportPeriod = "lastmonth";
    current.account = "not offered";
    current.department2 = "\"><script>";
    const std::string form = Rendered(ctx, offered.filterForm(ctx, current, current.Check()));
    CHECK(Holds(form, "<option selected value=\"lastmonth\">Last Month"));
    CHECK(Holds(form, "<option selected value=\"dept\">Departments"));
    CHECK_FALSE(Holds(form, "Contact"));
    CHECK_FALSE(Holds(form, "not offered"));
    CHECK(Holds(form, "value=\"&quot;&gt;&lt;script&gt;\""));
    CHECK(Holds(form, "name=\"report\" value=\"callsbyuser\""));
    CHECK(Holds(form, "value=\"Generate Report\" id=\"generate_button\""));
    CHECK(Holds(form, "data-mandatory-entity"));
    CHECK_FALSE(Holds(form, "fieldError"));
    CHECK_FALSE(Holds(form, "savedReportDesc"));

    offered.hasTimePeriod = offered.hasSecondForField = false;
    offered.saveOption = offered.hasDeleteButton = true;
    current.reportTitle = "Mine & \"yours\"";
    const std::string saved = Rendered(ctx, offered.filterForm(ctx, current));
    CHECK_FALSE(Holds(saved, "begintime"));
    CHECK_FALSE(Holds(saved, "A_suggest1"));
    CHECK(Holds(saved, "value=\"Mine &amp; &quot;yours&quot;\""));
    CHECK(Holds(saved, "value=\"Delete\" id=\"delete_button\""));
}

TEST_CASE("a list of periods that is handed in stands in for the form's own") {
    TestRequest request;
    PortalContext ctx(kConfig, nullptr);
    LDAPDropDownValue periods;
    periods.Add("today", "Oggi");
    periods.Add("lastmonth", "<Il mese scorso>");
    Filter offered;
    offered.SetDateDDL(&periods);
    Filter current;
    current.reportPeriod = "lastmonth";
    std::string form = Rendered(ctx, offered.filterForm(ctx, current));
    CHECK(Holds(form, "value=\"today\">Oggi"));
    CHECK(Holds(form, "<option selected value=\"lastmonth\">&lt;Il mese scorso&gt;"));
    CHECK_FALSE(Holds(form, "value=\"yesterday\""));
    // A list without the choice for explicit dates has nothing to select for them.
    current.startDate = "2024-03-15";
    form = Rendered(ctx, offered.filterForm(ctx, current));
    CHECK(Holds(form, "value=\"2024-03-15\""));
}

TEST_CASE("a problem stands beside its field, or above the form when that has no such field") {
    TestRequest request;
    PortalContext ctx(kConfig, nullptr);
    Filter offered;
    Filter current;
    current.startDate = "2024-13-01";
    current.vatrate = "x";
    const std::string form = Rendered(ctx, offered.filterForm(ctx, current, current.Check()));
    CHECK(Holds(form, "aria-invalid=\"true\" aria-describedby=\"startDate_error\""));
    const size_t vat = form.find("The VAT rate must be a number");
    const size_t date = form.find("The start date must be a date");
    const size_t table = form.find("lumoraFormTable");
    CHECK(vat < table);
    CHECK(table < date);
    CHECK(date != std::string::npos);
    // Dates mean the choice "Start and End Dates", whatever keyword came with them.
    CHECK(Holds(form, "<option selected value=\"custom\">"));
}
