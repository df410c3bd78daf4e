#include "platform/codecs/png/Runs.h"

#include <algorithm>
#include <cstring>

namespace veltrane::codecs::png {

namespace {

constexpr std::size_t kWord = 4;
constexpr std::size_t kShortest = 10; // shorter runs cost as much as their literals, which are the cheapest

bool IsZeroWord(const std::uint8_t* bytes) noexcept
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word == 0;
}

// Four tables, so that equal neighbours do not wait for each other's count.
class Counter {
public:
    void Count(const std::uint8_t* bytes, std::size_t count) noexcept
    {
        for (; count >= 4; count -= 4, bytes += 4) {
            ++tables[0][bytes[0]];
            ++tables[1][bytes[1]];
            ++tables[2][bytes[2]];
            ++tables[3][bytes[3]];
        }
        for (; count > 0; --count)
            ++tables[0][*bytes++];
    }
    void AddTo(Block& block) const noexcept
    {
        for (std::size_t i = 0; i < 256; ++i)
            block.literals[i] += tables[0][i] + tables[1][i] + tables[2][i] + tables[3][i];
    }

private:
    std::array<std::array<std::uint32_t, 256>, 4> tables {};
};

// Adds the zeros from `start` to `end` as matches at distance 1, which repeat the byte before them; the
// first zero stays a literal. Where the literals of the next sequence begin.
std::size_t AddRun(Block& block, std::size_t from, std::size_t start, std::size_t end)
{
    ++start;
    auto literals = static_cast<std::uint32_t>(start - from);
    while (end - start >= 3) {
        const std::size_t length = std::min(end - start, kLongestMatch);
        block.AddMatch(literals, static_cast<unsigned>(length), 1);
        start += length;
        literals = 0;
    }
    return start;
}

} // namespace

void FindRuns(Bytes bytes, Block& block)
{
    block.Clear();
    Counter counter;
    const std::uint8_t* const data = bytes.data();
    std::size_t from = 0; // where the literals not yet in a sequence begin
    for (std::size_t i = 0; i + kWord <= bytes.size();) {
        if (!IsZeroWord(data + i)) {
            i += kWord;
            continue;
        }
        std::size_t start = i, end = i + kWord;
        while (start > from && data[start - 1] == 0)
            --start;
        while (end < bytes.size() && data[end] == 0)
            ++end;
        i = end;
        if (end - start < kShortest)
            continue;
        counter.Count(data + from, start + 1 - from);
        from = AddRun(block, from, start, end);
    }
    counter.Count(data + from, bytes.size() - from);
    block.AddEnd(static_cast<std::uint32_t>(bytes.size() - from));
    counter.AddTo(block);
}

} // namespace veltrane::codecs::png
