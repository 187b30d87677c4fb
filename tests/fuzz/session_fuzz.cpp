// Session files: reading any, and writing values that hold anything. What stands behind the first
// zero byte of the input becomes a value.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "cgiFramework/WebContext.h"
#include "fuzz/FuzzInput.h"

namespace {

namespace fs = std::filesystem;

// A root of this run's own, removed at its end.
struct Root {
    Root() : path(fs::temp_directory_path() / ("lumora-fuzz-" + std::to_string(getpid()))) {
        fs::create_directories(path / "Norvane/sessions");
        setenv("LUMORA_ROOT", path.c_str(), 1);
        setenv("REMOTE_ADDR", "192.0.2.1", 1);
        setenv("QUERY_STRING", "sessionId=1", 1);
    }
    ~Root() { fs::remove_all(path); }
    fs::path path;
};

void Open(WebContext& ctx) {
    ctx.InitSession("Fuzz", 0, /*inUrl=*/true);
    Require(ctx.HasExistingSession(), "the session is this address's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Root root;
    const std::string file = TextOf(data, size);
    const std::string value =
        file.size() < size ? TextOf(data + file.size() + 1, size - file.size() - 1) : "";
    std::ofstream(root.path / "Norvane/sessions/Fuzz_1") << "REMOTE_ADDR=192.0.2.1\n" << file;

    std::set<std::string> names;
    {
        WebContext ctx("/nowhere", nullptr);
        Open(ctx);
        ctx.SetWebSessionVar("fuzz.value", value.c_str());
        for (const WebSessionVar& var : ctx.session_vars)
            names.insert(var.name.c_str());
    }
    WebContext ctx("/nowhere", nullptr);
    Open(ctx);
    for (const WebSessionVar& var : ctx.session_vars)
        Require(names.count(var.name.c_str()) != 0, "no value plants another variable");
    Require(value.starts_with(ctx.GetWebSessionVar("fuzz.value")->value.c_str()),
            "a value comes back, or its beginning");
    return 0;
}
