#include "tools/probe/Sha256.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace veltrane {

namespace {

constexpr std::array<std::uint32_t, 64> kRound { 0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b,
    0x59f111f1, 0x923f82a4, 0xab1c5ed5, 0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74,
    0x80deb1fe, 0x9bdc06a7, 0xc19bf174, 0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f,
    0x4a7484aa, 0x5cb0a9dc, 0x76f988da, 0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3,
    0xd5a79147, 0x06ca6351, 0x14292967, 0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354,
    0x766a0abb, 0x81c2c92e, 0x92722c85, 0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819,
    0xd6990624, 0xf40e3585, 0x106aa070, 0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3,
    0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3, 0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa,
    0xa4506ceb, 0xbef9a3f7, 0xc67178f2 };

} // namespace

void Sha256::Block(const std::uint8_t* block)
{
    std::array<std::uint32_t, 64> w {};
    for (std::size_t i = 0; i < 16; ++i) {
        const std::uint8_t* const b = block + 4 * i;
        w[i] = std::uint32_t { b[0] } << 24 | std::uint32_t { b[1] } << 16 | std::uint32_t { b[2] } << 8
            | b[3];
    }
    for (std::size_t i = 16; i < 64; ++i) {
        const std::uint32_t s0 = std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ w[i - 15] >> 3;
        const std::uint32_t s1 = std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ w[i - 2] >> 10;
        w[i] = w[i - 16] + s0 + w[i - 7] + s1;
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (std::size_t i = 0; i < 64; ++i) {
        const std::uint32_t s1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
        const std::uint32_t t1 = h + s1 + ((e & f) ^ (~e & g)) + kRound[i] + w[i];
        const std::uint32_t s0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
        const std::uint32_t t2 = s0 + ((a & b) ^ (a & c) ^ (b & c));
        h = g, g = f, f = e, e = d + t1, d = c, c = b, b = a, a = t1 + t2;
    }
    const std::array<std::uint32_t, 8> sum { a, b, c, d, e, f, g, h };
    for (std::size_t i = 0; i < 8; ++i)
        state[i] += sum[i];
}

void Sha256::Add(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const std::size_t held = total % 64;
        const std::size_t taken = std::min(64 - held, bytes.size());
        std::memcpy(pending.data() + held, bytes.data(), taken);
        total += taken;
        bytes = bytes.subspan(taken);
        if (total % 64 == 0)
            Block(pending.data());
    }
}

std::string Sha256::Finish()
{
    const std::uint64_t bits = total * 8;
    const std::array<std::uint8_t, 64> padding { 0x80 };
    Add(std::span(padding).first(total % 64 < 56 ? 56 - total % 64 : 120 - total % 64));
    std::array<std::uint8_t, 8> length {};
    for (std::size_t i = 0; i < 8; ++i)
        length[i] = static_cast<std::uint8_t>(bits >> (56 - 8 * i));
    Add(length);

    std::string digits;
    for (const std::uint32_t word : state) {
        for (int shift = 28; shift >= 0; shift -= 4)
            digits += "0123456789abcdef"[word >> shift & 15];
    }
    return digits;
}

} // namespace veltrane
