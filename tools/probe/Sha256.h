#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace veltrane {

/// SHA-256 of bytes given piece by piece. Source: FIPS 180-4, section 6.2.
class Sha256 {
public:
    void Add(std::span<const std::uint8_t> bytes);

    /// The digest as 64 small hexadecimal digits; nothing may be added behind it.
    [[nodiscard]] std::string Finish();

private:
    void Block(const std::uint8_t* block);

    std::array<std::uint32_t, 8> state { 0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f,
        0x9b05688c, 0x1f83d9ab, 0x5be0cd19 };
    std::array<std::uint8_t, 64> pending {};
    std::uint64_t total = 0;
};

} // namespace veltrane
