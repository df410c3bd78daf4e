#include <array>

#include <gtest/gtest.h>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"

using namespace veltrane;
using imaging::ByteReader;
using imaging::Fault;

namespace {

constexpr std::array<std::uint8_t, 6> kBlock { 0x80, 0x01, 0x02, 0xFF, 0xFE, 0x7F };

} // namespace

TEST(ByteReader, ReadsBothByteOrdersAndSigns)
{
    ByteReader big(kBlock, std::endian::big);
    EXPECT_EQ(big.U16(), 0x8001);
    EXPECT_EQ(big.U32(), 0x02FFFE7Fu);
    ByteReader little(kBlock, std::endian::little);
    EXPECT_EQ(little.I16(), 0x0180);
    EXPECT_EQ(little.U32(), 0x7FFEFF02u);
    ByteReader sign(kBlock, std::endian::big);
    EXPECT_EQ(sign.I16(), -32767);
    EXPECT_EQ(sign.I8(), 2);
}

TEST(ByteReader, RefusesWhatLiesBehindTheEnd)
{
    ByteReader in(kBlock, std::endian::big);
    in.Seek(3);
    EXPECT_THROW((void)in.U32(), Fault);
    EXPECT_EQ(in.Position(), 3u) << "a refused read must not move";
    EXPECT_THROW(in.Skip(SIZE_MAX), Fault);
    EXPECT_THROW(in.Seek(7), Fault);
    in.Seek(6);
    EXPECT_EQ(in.Remaining(), 0u);
}

TEST(ByteReader, NestedCannotEscapeItsParent)
{
    ByteReader in(kBlock, std::endian::big);
    ByteReader record = in.Nested(3);
    EXPECT_EQ(in.Position(), 3u);
    record.Skip(2);
    EXPECT_THROW((void)record.U16(), Fault);
}
