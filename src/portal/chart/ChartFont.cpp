#include "portal/chart/ChartFont.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MODULE_H
#include FT_OUTLINE_H
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "common/Path.h"
#include "common/ThrowText.h"
#include "common/Unicode.h"

// The library's modules, by the names that it gives them in ftmodule.h. Of a driver's description
// this is the first part.
extern "C" {
extern const FT_Module_Class sfnt_module_class;
extern const FT_Module_Class tt_driver_class;
extern const FT_Module_Class autofit_module_class;
extern const FT_Module_Class ft_smooth_renderer_class;
}

namespace {

constexpr char kVera[] = "/usr/share/fonts/truetype/ttf-bitstream-vera/Vera.ttf";
constexpr char kDejaVu[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr double kPixelsPerPoint = 100.0 / 72;
constexpr wchar_t kReplacement = 0xFFFD;
constexpr wchar_t kEllipsis = 0x2026;

void* Allocate(FT_Memory /*memory*/, long size) {
    return malloc(static_cast<size_t>(size));
}
void* Reallocate(FT_Memory /*memory*/, long /*size*/, long newSize, void* block) {
    return realloc(block, static_cast<size_t>(newSize));
}
void Free(FT_Memory /*memory*/, void* block) {
    free(block);
}

// Only what reads and draws outlines of TrueType fonts: the library's usual start would link all of
// its font formats into a program that is started for each page.
class Library {
  public:
    Library() {
        if (FT_New_Library(&memory_, &library_) != 0) ThrowText("The font library does not start.");
        for (const FT_Module_Class* module : {&sfnt_module_class, &tt_driver_class,
                                              &autofit_module_class, &ft_smooth_renderer_class})
            FT_Add_Module(library_, module);
    }
    ~Library() { FT_Done_Library(library_); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    FT_Library get() const { return library_; }

  private:
    FT_MemoryRec_ memory_ = {nullptr, Allocate, Free, Reallocate};
    FT_Library library_ = nullptr;
};

// Whatever keeps faces asks for it first, so that it goes after them.
FT_Library TheLibrary() {
    static const Library library;
    return library.get();
}

std::wstring Codes(const char* text) {
    std::wstring codes;
    const UTF8* at = reinterpret_cast<const UTF8*>(text);
    // A letter is four bytes at most: a long text is not even measured.
    const UTF8* const end = at + strnlen(text, 4 * ChartFont::kMaxLetters);
    codes.resize(static_cast<size_t>(end - at));
    UTF32* out = codes.data();
    while (at < end) {
        if (ConvertUTF8toUTF32(&at, end, &out, codes.data() + codes.size(), strictConversion) ==
            conversionOK)
            break;
        if (at < end) ++at;
        *out++ = kReplacement;
    }
    codes.resize(std::min(static_cast<size_t>(out - codes.data()), ChartFont::kMaxLetters));
    return codes;
}

double PixelSize(int size) {
    return std::clamp(size, 1, ChartFont::kMaxSize) * kPixelsPerPoint;
}

}  // namespace

struct ChartFont::Face {
    explicit Face(FT_Face face_) : face(face_) {}
    ~Face() { FT_Done_Face(face); }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    // Null when the file is no font with outlines.
    static std::unique_ptr<Face> Read(const char* path) {
        FT_Face face = nullptr;
        if (access(path, R_OK) != 0 || FT_New_Face(TheLibrary(), path, 0, &face) != 0)
            return nullptr;
        auto read = std::make_unique<Face>(face);
        return FT_IS_SCALABLE(face) ? std::move(read) : nullptr;
    }

    // DejaVu Sans, Vera's own shapes with more alphabets; null when it is not installed.
    static Face* Spare() {
        static const std::unique_ptr<Face> spare = Read(kDejaVu);
        return spare.get();
    }

    FT_Face face;
};

ChartFont::ChartFont(std::unique_ptr<Face> face) : face_(std::move(face)) {}
ChartFont::~ChartFont() = default;

ChartFont& ChartFont::Open(const char* path) {
    TheLibrary();
    static std::map<std::string, std::unique_ptr<ChartFont>> fonts;
    std::unique_ptr<ChartFont>& font = fonts[path];
    if (font != nullptr) return *font;
    const UString told = RootPath(path);
    for (const char* file : {told.c_str(), kVera, kDejaVu}) {
        std::unique_ptr<Face> face = Face::Read(file);
        if (face == nullptr) continue;
        font.reset(new ChartFont(std::move(face)));
        return *font;
    }
    ThrowText("There is no font for charts: install the package ttf-bitstream-vera.");
}

ChartFont::Letter ChartFont::Look(wchar_t code) {
    Face* face = face_.get();
    unsigned glyph = FT_Get_Char_Index(face->face, static_cast<FT_ULong>(code));
    if (glyph == 0 && Face::Spare() != nullptr) {
        const unsigned other = FT_Get_Char_Index(Face::Spare()->face, static_cast<FT_ULong>(code));
        if (other != 0) {
            face = Face::Spare();
            glyph = other;
        }
    }
    if (FT_Load_Glyph(face->face, glyph, FT_LOAD_NO_SCALE) != 0) return {nullptr, 0, 0};
    const double units = static_cast<double>(face->face->glyph->metrics.horiAdvance);
    return {face, glyph, units / face->face->units_per_EM};
}

const ChartFont::Letter& ChartFont::Find(wchar_t code) {
    const auto known = letters_.find(code);
    return known != letters_.end() ? known->second
                                   : letters_.emplace(code, Look(code)).first->second;
}

int ChartFont::Width(const char* text, int size) {
    double width = 0;
    for (const wchar_t code : Codes(text))
        width += Find(code).advance;
    return static_cast<int>(std::ceil(width * PixelSize(size)));
}

UString ChartFont::Shorten(const char* text, int size, int width) {
    if (Width(text, size) <= width) return text;
    double left = width / PixelSize(size) - Find(kEllipsis).advance;
    std::wstring kept;
    for (const wchar_t code : Codes(text)) {
        left -= Find(code).advance;
        if (left < 0) break;
        kept += code;
    }
    while (!kept.empty() && kept.back() == L' ')
        kept.pop_back();
    kept += kEllipsis;
    return kept.c_str();
}

void ChartFont::Draw(const char* text, int size, int x, int y, double angle, const Paint& paint) {
    const double pixels = PixelSize(size);
    double along = 0;
    for (const wchar_t code : Codes(text)) {
        const Letter& letter = Find(code);
        if (letter.face != nullptr)
            DrawLetter(letter, size, x + along * std::cos(angle), y + along * std::sin(angle),
                       angle, paint);
        along += letter.advance * pixels;
    }
}

void ChartFont::DrawLetter(const Letter& letter, int size, double x, double y, double angle,
                           const Paint& paint) {
    FT_Face face = letter.face->face;
    const FT_F26Dot6 points = std::clamp(size, 1, kMaxSize) * 64;
    // Upright letters stand on whole pixels, which keeps small ones sharp; turned ones have none.
    const FT_Int32 flags = angle == 0 ? FT_LOAD_TARGET_LIGHT : FT_LOAD_NO_HINTING;
    if (FT_Set_Char_Size(face, points, points, 100, 100) != 0 ||
        FT_Load_Glyph(face, letter.glyph, flags | FT_LOAD_NO_BITMAP) != 0)
        return;
    FT_Outline& outline = face->glyph->outline;
    if (angle != 0) {
        const FT_Fixed sine = std::lround(std::sin(angle) * 0x10000);
        const FT_Fixed cosine = std::lround(std::cos(angle) * 0x10000);
        const FT_Matrix turn = {cosine, -sine, sine, cosine};
        FT_Outline_Transform(&outline, &turn);
    }
    const double left = std::floor(x), bottom = std::floor(y);
    FT_Outline_Translate(&outline, std::lround((x - left) * 64),
                         angle == 0 ? 0 : std::lround((y - bottom) * 64));
    if (FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL) != 0) return;
    const FT_Bitmap& bitmap = face->glyph->bitmap;
    const int firstX = static_cast<int>(left) + face->glyph->bitmap_left;
    const int topY = static_cast<int>(bottom) + face->glyph->bitmap_top - 1;
    for (unsigned row = 0; row < bitmap.rows; ++row)
        for (unsigned column = 0; column < bitmap.width; ++column) {
            const unsigned char shade =
                bitmap.buffer[static_cast<ptrdiff_t>(row) * bitmap.pitch + column];
            if (shade != 0)
                paint(firstX + static_cast<int>(column), topY - static_cast<int>(row),
                      shade / 255.0);
        }
}
