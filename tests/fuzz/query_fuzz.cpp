// Query strings and urlencoded bodies, and the URLs that are made of their arguments.
#include <cstring>
#include <set>

#include "cgiFramework/WebContext.h"
#include "fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = TextOf(data, size);
    WebContext ctx("/nowhere", nullptr);
    ctx.ScanWebArguments(text.c_str());

    std::set<std::string> names;
    for (WebArgument& argument : ctx.arguments) {
        Require(names.insert(argument.name.c_str()).second, "names are added once");
        Require(&ctx[argument.name] == &argument, "arguments are found by their names");
        Require(argument.type_ == WebArgument::Normal || argument.name == "sessionId",
                "no request makes a setting");
    }
    // Escaping makes three characters of one.
    Require(strlen(ctx.GetFullURL(nullptr)) <= 4 * size + 64, "URLs are no longer than that");
    Require(strlen(ctx.GetFullURL("q=%s", text.c_str())) <= 8 * size + 64, "URLs end");
    for (const std::string& name : names)
        ctx.IsSameArgument(name.c_str(), text.c_str());

    const size_t count = ctx.arguments.size();
    ctx.NewArguments();
    ctx.SetWebArgument("fuzz.added", 1);
    ctx.SortWebArguments(/*ignoreCase=*/size % 2 != 0, /*ambiguous=*/size % 3 != 0);
    ctx.FlushArguments(-1);
    Require(ctx.arguments.size() == count || names.count("fuzz.added") != 0,
            "sorting loses no argument");
    return 0;
}
