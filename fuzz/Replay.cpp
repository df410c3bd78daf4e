// Gives a fuzz target a main of its own, so that any compiler can run saved inputs through it: each argument
// is a file, or a folder whose files are taken.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int Run(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
    std::vector<std::uint8_t> input(bytes.begin(), bytes.end()); // its own block: reads behind it are seen
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return 1;
}

} // namespace

int main(int count, char** arguments)
{
    int inputs = 0;
    for (int i = 1; i < count; ++i) {
        const std::filesystem::path path(arguments[i]);
        if (!std::filesystem::is_directory(path)) {
            inputs += Run(path);
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
            if (entry.is_regular_file())
                inputs += Run(entry.path());
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1; // no inputs: the replay proved nothing
}
