#include "imaging/pict/text/Typeface.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <string_view>
#include <utility>

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_ADVANCES_H
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace veltrane::imaging::pict {

namespace {

template<auto Release>
struct Releaser {
    template<class T>
    void operator()(T* object) const noexcept
    {
        Release(object);
    }
};
using PatternHandle = std::unique_ptr<FcPattern, Releaser<FcPatternDestroy>>;
using CharSetHandle = std::unique_ptr<FcCharSet, Releaser<FcCharSetDestroy>>;

struct FontFile {
    std::string path;
    int index = 0;
};

const FcChar8* Fc(const std::string& text) noexcept
{
    return reinterpret_cast<const FcChar8*>(text.c_str());
}

PatternHandle Wish(const std::string& family, bool bold, bool italic, char32_t needed)
{
    PatternHandle wish(FcPatternCreate());
    if (!wish)
        throw std::bad_alloc();
    FcPatternAddString(wish.get(), FC_FAMILY, Fc(family));
    FcPatternAddInteger(wish.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(wish.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(wish.get(), FC_OUTLINE, FcTrue);
    FcPatternAddBool(wish.get(), FC_SCALABLE, FcTrue);
    if (needed != 0) {
        const CharSetHandle characters(FcCharSetCreate());
        FcCharSetAddChar(characters.get(), needed);
        FcPatternAddCharSet(wish.get(), FC_CHARSET, characters.get());
    }
    FcConfigSubstitute(nullptr, wish.get(), FcMatchPattern);
    FcDefaultSubstitute(wish.get());
    return wish;
}

FontFile Best(const std::string& family, bool bold, bool italic, char32_t needed)
{
    const PatternHandle wish = Wish(family, bold, italic, needed);
    FcResult result = FcResultNoMatch;
    const PatternHandle match(FcFontMatch(nullptr, wish.get(), &result));
    FcChar8* path = nullptr;
    FontFile file;
    if (match && FcPatternGetString(match.get(), FC_FILE, 0, &path) == FcResultMatch)
        file.path = reinterpret_cast<const char*>(path);
    if (match && FcPatternGetInteger(match.get(), FC_INDEX, 0, &file.index) != FcResultMatch)
        file.index = 0;
    return file;
}

/// The library lives as long as the faces that it opened.
class Library {
public:
    Library() noexcept
    {
        if (FT_Init_FreeType(&library) != 0)
            library = nullptr;
    }
    ~Library() { FT_Done_FreeType(library); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    [[nodiscard]] FT_Library Get() const noexcept { return library; }

private:
    FT_Library library = nullptr;
};

std::shared_ptr<Library> SharedLibrary()
{
    static std::weak_ptr<Library> last;
    std::shared_ptr<Library> library = last.lock();
    if (!library) {
        library = std::make_shared<Library>();
        last = library;
    }
    return library;
}

/// Takes spans from the rasteriser, which is C: nothing may be thrown through it.
struct Collector {
    std::vector<GlyphSpan> spans;
    Point origin;
    bool failed = false;

    static void Take(int y, int count, const FT_Span* run, void* user) noexcept
    {
        auto& self = *static_cast<Collector*>(user);
        try {
            for (const FT_Span* span = run; span != run + count; ++span) {
                const int left = self.origin.x + span->x;
                // The rasteriser counts upwards: its row 0 is the one that stands on the base line.
                self.spans.push_back({ self.origin.y - 1 - y, left, left + span->len, span->coverage });
            }
        } catch (const std::bad_alloc&) {
            self.failed = true;
        }
    }
};

} // namespace

struct Typeface::Face {
    std::shared_ptr<Library> library;
    FT_Face face = nullptr;

    ~Face() { FT_Done_Face(face); }
    [[nodiscard]] double InEms(FT_Long units) const noexcept
    {
        return static_cast<double>(units) / std::max<int>(face->units_per_EM, 1);
    }
    [[nodiscard]] bool Load(char32_t character) const noexcept
    {
        const FT_UInt glyph = FT_Get_Char_Index(face, character);
        return glyph != 0 && FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE) == 0;
    }
};

Typeface::Typeface(std::unique_ptr<Face> opened) noexcept : face(std::move(opened))
{
    for (char32_t letter = U'a'; letter <= U'z'; ++letter)
        meanLetterWidth += Advance(letter) / 26;
}

Typeface::~Typeface() = default;

std::shared_ptr<Typeface> Typeface::Find(const std::string& family, bool bold, bool italic, char32_t needed)
{
    const FontFile file = Best(family, bold, italic, needed);
    auto opened = std::make_unique<Face>();
    opened->library = SharedLibrary();
    if (file.path.empty() || opened->library->Get() == nullptr
        || FT_New_Face(opened->library->Get(), file.path.c_str(), file.index, &opened->face) != 0)
        return nullptr;
    if (!FT_IS_SCALABLE(opened->face))
        return nullptr;
    return std::shared_ptr<Typeface>(new Typeface(std::move(opened)));
}

bool Typeface::Has(char32_t character) const noexcept
{
    return FT_Get_Char_Index(face->face, character) != 0;
}

double Typeface::Advance(char32_t character) const noexcept
{
    FT_Fixed advance = 0; // in font units, since nothing is scaled
    const FT_UInt glyph = FT_Get_Char_Index(face->face, character);
    if (glyph == 0 || FT_Get_Advance(face->face, glyph, FT_LOAD_NO_SCALE, &advance) != 0)
        return 0.5;
    return face->InEms(advance);
}

double Typeface::Ascent() const noexcept
{
    return face->InEms(face->face->ascender);
}

double Typeface::Descent() const noexcept
{
    return face->InEms(-face->face->descender);
}

std::vector<GlyphSpan> Typeface::Draw(
    char32_t character, double x, int y, double width, double height, const Rect& visible) const
{
    if (!face->Load(character) || face->face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return {};
    // Font units become 64ths of a pixel around the glyph's own origin, which stays near zero whatever the
    // place: the rasteriser's numbers are small.
    FT_Outline& outline = face->face->glyph->outline;
    const auto scale = [this](double em) { return std::lround(face->InEms(1) * em * 64 * 65536); };
    FT_Matrix matrix { scale(width), 0, 0, scale(height) };
    FT_Outline_Transform(&outline, &matrix);
    Collector collector { {}, { static_cast<int>(std::floor(x)), y } };
    FT_Outline_Translate(&outline, std::lround((x - std::floor(x)) * 64), 0);

    const auto near = [](int at) { return FT_Pos { std::clamp(at, -16000, 16000) }; };
    FT_Raster_Params params {};
    params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
    params.gray_spans = Collector::Take;
    params.user = &collector;
    params.clip_box = FT_BBox { near(visible.left - collector.origin.x), near(y - visible.bottom),
        near(visible.right - collector.origin.x), near(y - visible.top) };
    if (FT_Outline_Render(face->library->Get(), &outline, &params) != 0)
        return {};
    if (collector.failed)
        throw std::bad_alloc();
    return std::move(collector.spans);
}

} // namespace veltrane::imaging::pict
