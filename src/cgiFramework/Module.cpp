#include "cgiFramework/Module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>
#include <string>

#include "common/ThrowText.h"
#include "kernel/OSConsole.h"

namespace {

std::string ModulePath(const char* file) {
    char program[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", program, sizeof program);
    if (length <= 0 || length == sizeof program)
        ThrowText("The program's own folder is not known.");
    const std::string path(program, static_cast<size_t>(length));
    return path.substr(0, path.rfind('/') + 1) + file;
}

}  // namespace

void* LoadModule(const char* file, const char* entry, const char* purpose) {
    void* module = dlopen(ModulePath(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    void* address = module != nullptr ? dlsym(module, entry) : nullptr;
    if (address == nullptr) {
        ConsoleReport("%s cannot be loaded: %s\n", file, dlerror());
        ThrowText("%s cannot be made here: a module of the portal is missing.", purpose);
    }
    return address;
}
