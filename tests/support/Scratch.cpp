#include "tests/support/Scratch.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

namespace veltrane::tests {

Scratch::Scratch()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "veltrane-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no scratch folder");
    folder = pattern;
}

Scratch::~Scratch()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::string Scratch::Path(std::string_view name) const
{
    return name.empty() ? folder.string() : (folder / name).string();
}

void Scratch::Write(std::string_view name, std::string_view content) const
{
    std::ofstream file(folder / name, std::ios::binary);
    file << content;
}

std::string Scratch::Read(std::string_view name) const
{
    std::ifstream file(folder / name, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(none)";
}

std::string Scratch::Names() const
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    std::string all;
    for (const std::string& name : names)
        all += (all.empty() ? "" : " ") + name;
    return all;
}

void Link(const std::string& target, const std::string& path)
{
    ASSERT_EQ(symlink(target.c_str(), path.c_str()), 0);
}

} // namespace veltrane::tests
