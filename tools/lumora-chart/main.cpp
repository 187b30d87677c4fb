// lumora-chart: draws a chart description into a PNG file.
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "kernel/OSConsole.h"
#include "kernel/OSStartup.h"
#include "portal/chart/PngChart.h"

namespace {

constexpr char kUsage[] =
    "lumora-chart DESCRIPTION.json OUT.png [--width N] [--height N] [--server URL] [--map FILE]\n"
    "\n"
    "Draws a chart description, as reports write it, into a PNG file.\n"
    "\n"
    "  --width N     pixels, 600 unless told; at most 4000\n"
    "  --height N    pixels of a pie, 300 unless told; bars and lines are as high as they need\n"
    "  --server URL  put in front of the links of the image map\n"
    "  --map FILE    writes the image map's HTML to that file, - for standard output\n";

constexpr size_t kLargestDescription = 16 << 20;

enum { kDone, kFailed, kMisused };

struct CloseFile {
    void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

struct Options {
    const char* description = nullptr;
    const char* picture = nullptr;
    const char* server = "";
    const char* map = nullptr;
    int width = 600;
    int height = 300;
};

bool ReadNumber(const char* text, int& number) {
    const char* end = text + strlen(text);
    const auto [last, error] = std::from_chars(text, end, number);
    return error == std::errc() && last == end && end != text;
}

// False for a command line that makes no sense.
bool ReadOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word.rfind("--", 0) != 0) {
            const char*& file =
                options.description == nullptr ? options.description : options.picture;
            if (file != nullptr) return false;
            file = argv[i];
            continue;
        }
        const char* value = ++i < argc ? argv[i] : nullptr;
        if (value == nullptr) return false;
        if (word == "--server")
            options.server = value;
        else if (word == "--map")
            options.map = value;
        else if (word == "--width"    ? !ReadNumber(value, options.width)
                 : word == "--height" ? !ReadNumber(value, options.height)
                                      : true)
            return false;
    }
    return options.picture != nullptr;
}

// False when the file cannot be read or is too large.
bool ReadWhole(const char* path, std::string& text) {
    const File file(fopen(path, "rbe"));
    if (file == nullptr) return false;
    char block[8192];
    while (const size_t got = fread(block, 1, sizeof block, file.get())) {
        text.append(block, got);
        if (text.size() > kLargestDescription) return false;
    }
    return ferror(file.get()) == 0;
}

bool WriteMap(const char* path, const char* map) {
    if (strcmp(path, "-") == 0) return fputs(map, stdout) >= 0 && fflush(stdout) == 0;
    FILE* file = fopen(path, "wbe");
    if (file == nullptr) return false;
    const bool written = fputs(map, file) >= 0;
    return fclose(file) == 0 && written;
}

int Draw(const Options& options) {
    std::string text;
    if (!ReadWhole(options.description, text)) {
        fprintf(stderr, "lumora-chart: cannot read %s, or it is larger than 16 MiB\n",
                options.description);
        return kFailed;
    }
    UString name, map;
    try {
        JsonObj json(text.data(), nullptr, 0);
        const PngChart chart(&json, options.width, options.height, options.picture, options.server);
        chart.GetMap(name, map);
    } catch (const char* problem) {
        ConsoleReport("Chart elements parse error:%s\n", problem);
        return kFailed;
    }
    if (options.map != nullptr && !WriteMap(options.map, map.c_str())) {
        fprintf(stderr, "lumora-chart: cannot write %s\n", options.map);
        return kFailed;
    }
    return kDone;
}

}  // namespace

int main(int argc, char** argv) {
    os_startup();
    Console->SetStream(stderr);
    if (argc == 2 && (strcmp(argv[1], "--help") == 0 || strcmp(argv[1], "-h") == 0)) {
        fputs(kUsage, stdout);
        return kDone;
    }
    Options options;
    if (!ReadOptions(argc, argv, options)) {
        fputs(kUsage, stderr);
        return kMisused;
    }
    return Draw(options);
}
