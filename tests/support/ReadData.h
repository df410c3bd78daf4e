#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace veltrane::tests {

/// The bytes of a file under tests/data/; fails the test when it is not there or empty.
inline std::vector<std::uint8_t> ReadData(const std::string& name)
{
    std::ifstream file(std::string(TEST_DATA "/") + name, std::ios::binary);
    std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
    EXPECT_FALSE(bytes.empty()) << name;
    return bytes;
}

} // namespace veltrane::tests
