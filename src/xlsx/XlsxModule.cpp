#include "xlsx/XlsxModule.h"

#include <exception>

#include "xlsx/XlsxBook.h"

namespace {

char problem[200];

bool Succeeded(lxw_error error) {
    if (error == LXW_NO_ERROR) return true;
    snprintf(problem, sizeof problem, "%s", lxw_strerror(error));
    return false;
}

// No exception may reach the program, which has a C++ library of its own.
template <class Result, class Work>
Result Guarded(Result failed, Work work) {
    try {
        return work();
    } catch (const std::exception& failure) {
        snprintf(problem, sizeof problem, "%s", failure.what());
        return failed;
    }
}

void* Open(const XlsxModuleBook* book) {
    return Guarded<void*>(nullptr, [&] { return new XlsxBook(*book); });
}

bool AddRow(void* book, const XlsxModuleCell* cells) {
    return Guarded(false, [&] { return Succeeded(static_cast<XlsxBook*>(book)->AddRow(cells)); });
}

bool Close(void* book, const XlsxModuleNote* notes, size_t count) {
    const std::unique_ptr<XlsxBook> owned(static_cast<XlsxBook*>(book));
    return Guarded(false, [&] { return Succeeded(owned->Close(notes, count)); });
}

const char* Problem() {
    return problem;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) const LumoraXlsx* lumora_xlsx() {
    static constexpr LumoraXlsx kEntries = {Open, AddRow, Close, Problem};
    return &kEntries;
}
