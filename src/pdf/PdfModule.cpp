#include "pdf/PdfModule.h"

#include <hpdf.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <exception>
#include <memory>
#include <utility>

#include "pdf/PdfTableWriter.h"

namespace {

// The first pair that is installed: plain and bold. The former knows more scripts.
constexpr std::array<std::pair<const char*, const char*>, 2> kFonts = {
    {{"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
      "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"},
     {"/usr/share/fonts/truetype/ttf-bitstream-vera/Vera.ttf",
      "/usr/share/fonts/truetype/ttf-bitstream-vera/VeraBd.ttf"}}};

char problem[200];

// The writer goes on after an error without writing more; the first is the one to tell.
struct FirstError {
    HPDF_STATUS number = HPDF_OK;
    HPDF_STATUS detail = HPDF_OK;
};

void KeepError(HPDF_STATUS number, HPDF_STATUS detail, void* user) {
    auto* first = static_cast<FirstError*>(user);
    if (first->number == HPDF_OK) *first = {number, detail};
}

struct FreeDocument {
    void operator()(HPDF_Doc document) const { HPDF_Free(document); }
};
using Document = std::unique_ptr<std::remove_pointer_t<HPDF_Doc>, FreeDocument>;

HPDF_Font LoadFont(HPDF_Doc document, const char* path) {
    const char* name = HPDF_LoadTTFontFromFile(document, path, HPDF_TRUE);
    return name != nullptr ? HPDF_GetFont(document, name, "UTF-8") : nullptr;
}

const char* Say(const char* text) {
    snprintf(problem, sizeof problem, "%s", text);
    return problem;
}

const char* WriteTable(const PdfModuleTable& table, const char* path) {
    const auto* fonts = &kFonts[0];
    while (fonts != kFonts.end() && (access(fonts->first, R_OK) | access(fonts->second, R_OK)) != 0)
        ++fonts;
    if (fonts == kFonts.end()) return Say("no font is installed (fonts-dejavu-core)");

    FirstError error;
    const Document document(HPDF_New(KeepError, &error));
    if (document == nullptr) return Say("no memory");
    HPDF_SetCompressionMode(document.get(), HPDF_COMP_ALL);
    HPDF_UseUTFEncodings(document.get());
    HPDF_Font plain = LoadFont(document.get(), fonts->first);
    HPDF_Font bold = LoadFont(document.get(), fonts->second);
    if (plain != nullptr && bold != nullptr) {
        PdfTableWriter(document.get(), plain, bold, table).Write();
        HPDF_SaveToFile(document.get(), path);
    }
    if (error.number == HPDF_OK) return nullptr;
    snprintf(problem, sizeof problem, "error %04lX, detail %lu", error.number, error.detail);
    return problem;
}

}  // namespace

// No exception may reach the program, which has a C++ library of its own.
extern "C" __attribute__((visibility("default"))) const char* lumora_pdf_write_table(
    const PdfModuleTable* table, const char* path) {
    try {
        return WriteTable(*table, path);
    } catch (const std::exception& failure) {
        return Say(failure.what());
    }
}
