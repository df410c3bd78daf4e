#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/ReadData.h"

namespace veltrane::tests {

/// A binary PPM as netpbm's tools write it: rows of red, green, blue.
struct Pnm {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;
};

/// Reads a PPM of 8 bits under tests/data/.
inline Pnm ReadPnm(const std::string& name)
{
    const std::vector<std::uint8_t> file = ReadData(name);
    std::istringstream text(std::string(file.begin(), file.end()));
    std::string magic;
    int most = 0;
    Pnm picture;
    text >> magic >> picture.width >> picture.height >> most;
    const std::size_t size = 3 * static_cast<std::size_t>(picture.width * picture.height);
    EXPECT_TRUE(magic == "P6" && most == 255 && file.size() >= size) << name;
    picture.rgb.assign(file.end() - static_cast<std::ptrdiff_t>(size), file.end());
    return picture;
}

} // namespace veltrane::tests
