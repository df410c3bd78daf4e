#include "imaging/pict/text/MacRoman.h"

#include <string_view>

namespace veltrane::imaging::pict {

namespace {

// From 0x80 on.
constexpr std::u32string_view kUpperRoman = U"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü"
                                            U"†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø"
                                            U"¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ"
                                            U"‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";

// From 0x20 to 0x7E, and from 0xA0 to 0xFE.
constexpr std::u32string_view kLowerSymbol = U" !∀#∃%&∋()∗+,−./0123456789:;<=>?"
                                             U"≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_"
                                             U"‾αβχδεφγηιϕκλμνοπθρστυϖωξψζ{|}∼";
constexpr std::u32string_view kUpperSymbol = U"€ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓°±″≥×∝∂•÷≠≡≈…⏐⎯↵"
                                             U"ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓"
                                             U"◊〈®©™∑⎛⎜⎝⎡⎢⎣⎧⎨⎩⎪\uF8FF〉∫⌠⎮⌡⎞⎟⎠⎤⎥⎦⎫⎬⎭";

} // namespace

char32_t MacRomanCharacter(std::uint8_t byte) noexcept
{
    return byte < 0x80 ? byte : kUpperRoman[byte - 0x80U];
}

std::string FromMacRoman(std::uint8_t byte)
{
    const char32_t c = MacRomanCharacter(byte);
    const auto tail = [c](int shift) { return static_cast<char>(0x80U | (c >> shift & 0x3FU)); };
    if (c < 0x20 || c == 0x7F)
        return "?"; // a control character would not show
    if (c < 0x80)
        return { static_cast<char>(c) };
    if (c < 0x800)
        return { static_cast<char>(0xC0U | c >> 6), tail(0) };
    return { static_cast<char>(0xE0U | c >> 12), tail(6), tail(0) }; // none lies beyond 16 bits
}

char32_t SymbolCharacter(std::uint8_t byte) noexcept
{
    if (byte >= 0x20 && byte <= 0x7E)
        return kLowerSymbol[byte - 0x20U];
    if (byte >= 0xA0 && byte <= 0xFE)
        return kUpperSymbol[byte - 0xA0U];
    return byte;
}

} // namespace veltrane::imaging::pict
