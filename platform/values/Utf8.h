#pragma once

#include <cstddef>
#include <string_view>

namespace veltrane::utf8 {

/// Bytes of the character at the front of `text`, which must not be empty: 2 to 4 for a valid sequence,
/// else 1. Source: The Unicode Standard, section 3.9, table 3-7.
[[nodiscard]] std::size_t CharacterLength(std::string_view text) noexcept;

/// Number of characters.
[[nodiscard]] std::size_t CharacterCount(std::string_view text) noexcept;

/// Byte offset of the character with that 0-based index; the length of `text` when there are fewer.
[[nodiscard]] std::size_t OffsetOf(std::string_view text, std::size_t character) noexcept;

} // namespace veltrane::utf8
