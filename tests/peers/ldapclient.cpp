// ldapclient: one directory session that follows the lines of its standard input.
//
// usage: peer_ldapclient SERVER USER PASSWORD
//
// A line is a command and its arguments, parted by tabs; each is answered by one line of JSON:
//   search BASE SCOPE FILTER SORT [ATTRIBUTE...]   {"res":0,"rows":[[["dn","..."],...],...]}
//   first BASE SCOPE FILTER                        leaves the rest of the entries unread
//   add|modify|delete NAME=VALUE...                a row of these fields: {"res":0}
//   rename NAME=VALUE...                           by the fields GUID, dn and cn
//   modrdn DN NEWRDN
// Whatever the session throws is the line {"error":"..."}.
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "kernel/OSConsole.h"
#include "kernel/OSStartup.h"
#include "ldap/LDAPSession.h"
#include "ldap/LDAPTable.h"

namespace {

using Words = std::vector<std::string>;

Words Split(const std::string& line) {
    Words words(1);
    for (const char c : line)
        if (c == '\t')
            words.emplace_back();
        else
            words.back() += c;
    return words;
}

std::string Json(const char* text) {
    std::string json = "\"";
    for (; *text != '\0'; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        char code[8];
        if (byte < 0x20 || byte == '"' || byte == '\\') {
            std::snprintf(code, sizeof code, "\\u%04x", byte);
            json += code;
        } else {
            json += *text;
        }
    }
    return json + "\"";
}

std::string Json(const LDAPRow& row) {
    std::string json;
    for (const LDAPField& field : row.fields) {
        json += json.empty() ? "[" : ",";
        json += "[" + Json(field.name) + "," + Json(field.value) + "]";
    }
    return json + "]";
}

std::string Search(LDAPSession& session, const Words& words) {
    std::vector<const char*> attributes;
    for (size_t i = 5; i < words.size(); ++i)
        attributes.push_back(words[i].c_str());
    attributes.push_back(nullptr);
    const int res = session.Search(words[1].c_str(), std::atoi(words[2].c_str()), words[3].c_str(),
                                   words.size() > 5 ? attributes.data() : nullptr, 0, 0, 0, 0);
    if (words[0] == "first") return "{\"res\":" + std::to_string(res) + "}";
    LDAPTable table;
    if (res == 0) table.Fetch(session, /*append=*/true, /*unique=*/false);
    table.Sort(words[4].c_str());
    std::string rows;
    for (const LDAPRow& row : table.rows)
        rows += (rows.empty() ? "" : ",") + Json(row);
    return "{\"res\":" + std::to_string(res) + ",\"rows\":[" + rows + "]}";
}

std::string Write(LDAPSession& session, const Words& words) {
    LDAPRow row;
    for (size_t i = 1; i < words.size(); ++i) {
        const size_t equals = words[i].find('=');
        row.Field(words[i].substr(0, equals).c_str(), "%s", words[i].substr(equals + 1).c_str());
    }
    int res = 0;
    if (words[0] == "add")
        res = row.Add(session);
    else if (words[0] == "modify")
        res = row.Modify(session);
    else if (words[0] == "rename")
        res = row.ModifyCN(session);
    else
        res = row.Delete(session);
    return "{\"res\":" + std::to_string(res) + "}";
}

std::string Run(LDAPSession& session, const Words& words) {
    if (words[0] == "modrdn")
        return "{\"res\":" + std::to_string(session.ModRDN(words[1].c_str(), words[2].c_str())) +
               "}";
    const bool reads = words[0] == "search" || words[0] == "first";
    session.CheckConnection();
    return reads ? Search(session, words) : Write(session, words);
}

}  // namespace

int main(int argc, char** argv) {
    os_startup();
    Console->SetStream(stderr);
    if (argc != 4) return 2;
    try {
        LDAPSession session(argv[1], argv[2], argv[3], nullptr);
        for (std::string line; std::getline(std::cin, line);)
            std::cout << Run(session, Split(line)) << std::endl;
        return 0;
    } catch (const char* text) {
        std::cout << "{\"error\":" << Json(text) << "}" << std::endl;
        return 1;
    }
}
