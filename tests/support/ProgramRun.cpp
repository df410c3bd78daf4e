#include "tests/support/ProgramRun.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "imaging/Codec.h"
#include "imaging/Fault.h"
#include "platform/widgets/DragItem.h"
#include "shell/Startup.h"
#include "window/WVeltrane.h"

namespace veltrane::tests {

namespace {

using namespace imaging;

int decoded = 0; // plain pictures

bool ProbePlain(Bytes head) noexcept
{
    return head.size() > 6 && std::memcmp(head.data(), "PLAIN ", 6) == 0;
}

Bitmap DecodePlain(Bytes file, const Limits& limits)
{
    int width = 0, height = 0;
    unsigned colour = 0;
    const std::string text(file.begin(), file.end());
    if (std::sscanf(text.c_str(), "PLAIN %d %d %x", &width, &height, &colour) < 2)
        throw Fault(Fault::Damaged);
    limits.Check(width, height);
    ++decoded;
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::uint8_t* const pixels = picture.Writable();
    for (std::size_t i = 0; i < picture.Stride() * static_cast<std::size_t>(height); i += 4) {
        for (unsigned c = 0; c < 3; ++c)
            pixels[i + c] = static_cast<std::uint8_t>(colour >> (16 - 8 * c));
        pixels[i + 3] = 255;
    }
    picture.Opaque(true);
    return picture;
}

constexpr Codec kPlain { "PLAIN", ProbePlain, DecodePlain, nullptr };

} // namespace

ProgramRun::ProgramRun()
{
    setenv("XDG_CONFIG_HOME", settings.Path().c_str(), 1);
    RegisterFallback(&kPlain);
    decoded = 0;
}

int ProgramRun::PlainDecoded() const
{
    return decoded;
}

ProgramRun::~ProgramRun()
{
    RegisterFallback(nullptr);
    unsetenv("XDG_CONFIG_HOME");
}

void ProgramRun::Go()
{
    _Main();
}

void ProgramRun::Plain(std::string_view name, int width, int height) const
{
    pictures.Write(name, "PLAIN " + std::to_string(width) + " " + std::to_string(height) + " 2060C0");
}

void ProgramRun::Open(std::string_view name)
{
    runtime.OpenDocument(FolderItem::FromPath(pictures.Path(name)));
}

void ProgramRun::Drop(const std::vector<std::string>& names)
{
    std::vector<std::string> addresses;
    for (const std::string& name : names)
        addresses.push_back(name.find(':') == std::string::npos ? Address(name) : name);
    const auto window = WVeltrane();
    runtime.Drop(window, New<DragItem>(addresses, window->AcceptedTypes()));
}

std::vector<std::string> ProgramRun::Messages() const
{
    std::vector<std::string> messages;
    for (const Box& box : body.boxes)
        messages.emplace_back(box.message.Bytes());
    return messages;
}

} // namespace veltrane::tests
