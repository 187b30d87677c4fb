#include "common/Path.h"

#include <cstdlib>
#include <string>
#include <string_view>

namespace {

bool LiesBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

bool IsMoved(std::string_view path) {
    for (const std::string_view folder : {"/Norvane", "/media", "/ftp", "/hosts", "/Library"})
        if (LiesBelow(path, folder)) return true;
    return false;
}

}  // namespace

UString RootPath(const char* path) {
    const char* root = std::getenv("LUMORA_ROOT");
    if (path == nullptr || root == nullptr || !IsMoved(path)) return UString(path);
    std::string moved = root;
    while (moved.ends_with('/'))
        moved.pop_back();
    return UString((moved + path).c_str());
}
