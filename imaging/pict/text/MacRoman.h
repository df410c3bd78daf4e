#pragma once

#include <cstdint>
#include <string>

namespace veltrane::imaging::pict {

/// The Unicode character of a byte in Mac Roman. Source: Unicode's APPLE/ROMAN.TXT.
[[nodiscard]] char32_t MacRomanCharacter(std::uint8_t byte) noexcept;

/// The same, as UTF-8.
[[nodiscard]] std::string FromMacRoman(std::uint8_t byte);

/// The Unicode character of a byte in the font Symbol, whose letters are Greek and whose upper half are
/// signs. Source: Unicode's APPLE/SYMBOL.TXT.
[[nodiscard]] char32_t SymbolCharacter(std::uint8_t byte) noexcept;

} // namespace veltrane::imaging::pict
