#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace veltrane::tests {

/// A folder of one test's own, gone with it.
class Scratch {
public:
    Scratch();
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] std::string Path(std::string_view name = {}) const;
    void Write(std::string_view name, std::string_view content) const;
    [[nodiscard]] std::string Read(std::string_view name) const; ///< "(none)" when there is no such file

    /// The names in the folder, sorted, parted by blanks.
    [[nodiscard]] std::string Names() const;

private:
    std::filesystem::path folder;
};

/// Makes a symbolic link at `path`.
void Link(const std::string& target, const std::string& path);

} // namespace veltrane::tests
