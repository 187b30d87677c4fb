// demodata: writes a made-up telephone system's data as files that load into the database.
//
// The same options give the same files, except that calls which would end after the present moment
// are left out when the last day is today or later.

#include <sys/stat.h>

#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string>

#include "tools/demodata/AgentLog.h"
#include "tools/demodata/Calls.h"
#include "tools/demodata/Company.h"
#include "tools/demodata/ContactCentre.h"
#include "tools/demodata/Directory.h"
#include "tools/demodata/Inbox.h"
#include "tools/demodata/PortalTables.h"
#include "tools/demodata/Tsv.h"

namespace {

constexpr char kUsage[] =
    "usage: demodata --out DIR [--calls N] [--seed S] [--today YYYY-MM-DD]\n"
    "Writes DIR/<table>.tsv, DIR/load.sql, which loads them, DIR/demo-users.tsv: user name,\n"
    "password, purpose, and DIR/directory.ldif, which directoryd begins with. N calls (200000) of\n"
    "all customers lie on the day of --today (the present day, UTC) and the 90 days before it;\n"
    "--seed (1) changes the calls, the agents' log and the messages, and nothing else.\n";

constexpr int64_t kMostCalls = 100'000'000;

struct Options {
    std::string folder;
    demodata::CallOptions calls{200000, 1, 0, 0};
};

int64_t Number(const std::string& option, std::string_view text, int64_t least, int64_t most) {
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least || value > most)
        throw std::invalid_argument(option + " takes a number from " + std::to_string(least) +
                                    " to " + std::to_string(most));
    return value;
}

int64_t Day(const std::string& text) {
    using namespace std::chrono;
    int y = 0;
    unsigned m = 0;
    unsigned d = 0;
    int used = 0;
    const bool shaped = text.size() == 10 &&
                        std::sscanf(text.c_str(), "%4d-%2u-%2u%n", &y, &m, &d, &used) == 3 &&
                        used == 10;
    const year_month_day date{year{y}, month{m}, day{d}};
    // The database's stamps begin in 1970 and end in January 2038.
    if (!shaped || !date.ok() || y < 1971 || y > 2037)
        throw std::invalid_argument("--today takes a day YYYY-MM-DD from 1971 to 2037");
    return sys_days(date).time_since_epoch().count();
}

Options Parse(int argc, char** argv) {
    Options options;
    options.calls.now = std::time(nullptr);
    options.calls.lastDay = options.calls.now / 86400;
    for (int i = 1; i < argc; i += 2) {
        const std::string option = argv[i];
        if (i + 1 == argc) throw std::invalid_argument(option + " needs a value");
        const std::string value = argv[i + 1];
        if (option == "--out")
            options.folder = value;
        else if (option == "--calls")
            options.calls.calls = Number(option, value, 0, kMostCalls);
        else if (option == "--seed")
            options.calls.seed = static_cast<uint64_t>(Number(option, value, 0, INT64_MAX));
        else if (option == "--today")
            options.calls.lastDay = Day(value);
        else
            throw std::invalid_argument("unknown option " + option);
    }
    if (options.folder.empty()) throw std::invalid_argument("--out is missing");
    return options;
}

void Generate(const Options& options) {
    if (mkdir(options.folder.c_str(), 0755) != 0 && errno != EEXIST)
        throw std::runtime_error(options.folder + ": " + std::strerror(errno));
    const std::vector<demodata::Company> companies = demodata::MakeCompanies();
    demodata::LoadScript script;
    demodata::WritePortalTables(companies, options.folder, script);
    demodata::WriteDirectory(companies, options.folder);
    demodata::TableSet tables(options.folder, script);
    demodata::WriteContactCentre(companies, tables);
    const demodata::CallOptions& calls = options.calls;
    const int64_t firstDay = calls.lastDay - demodata::kCallDays + 1;
    demodata::WriteInbox(companies, {calls.calls, calls.seed, firstDay, calls.lastDay, calls.now},
                         tables);

    demodata::TsvFile file(options.folder, "CallLog");
    demodata::AgentLog agents(options.folder, calls.seed, calls.now);
    const int64_t rows = demodata::WriteCalls(companies, calls, file, agents, [&](int64_t done) {
        std::fprintf(stderr, "demodata: %lld of %lld calls\n", static_cast<long long>(done),
                     static_cast<long long>(calls.calls));
    });
    file.Finish();
    agents.Finish(script);
    script.Add("CallLog", demodata::kCallColumns);
    script.Write(options.folder);
    std::fprintf(stderr, "demodata: %lld rows of the call log\n", static_cast<long long>(rows));
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Generate(Parse(argc, argv));
        return 0;
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "demodata: %s\n%s", error.what(), kUsage);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "demodata: %s\n", error.what());
        return 1;
    }
}
