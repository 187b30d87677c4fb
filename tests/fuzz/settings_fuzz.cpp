// Settings files, read from a file as ever.
#include <sys/mman.h>
#include <unistd.h>

#include "cgiFramework/WebContext.h"
#include "fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const int file = memfd_create("settings", 0);
    Require(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size),
            "the file can be written");
    setenv("QUERY_STRING", "db=browser&user=browser&sessionId=1", 1);
    WebContext ctx(("/proc/self/fd/" + std::to_string(file)).c_str(), nullptr);

    for (const WebArgument& argument : ctx.arguments) {
        const bool fromFile = argument.type_ == WebArgument::Hidden;
        Require(&argument == ctx.FindWebArgument(argument.name), "names are added once");
        const std::string setting = ctx.GetSetting(argument.name);
        Require(fromFile ? argument.value == setting.c_str() : setting.empty(),
                "settings come from the file alone");
    }
    // A session id is carried in URLs, wherever it comes from.
    if (ctx["sessionId"] != "1") return 0;
    const std::string url = ctx.GetFullURL(nullptr);
    Require(url.size() <= 64, "no setting goes into a URL");
    return 0;
}
