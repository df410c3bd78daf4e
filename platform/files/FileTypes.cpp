#include "platform/files/FileTypes.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "imaging/Codec.h"
#include "platform/files/FileReader.h"
#include "platform/values/Exceptions.h"

namespace veltrane {

namespace {

struct Registration {
    String name, macCreator, macType, extensions, uti;
};

std::vector<Registration>& Registrations()
{
    // Never destroyed: types take their registration back as late as the end of the process.
    static auto& all = *new std::vector<Registration>;
    return all;
}

// Calls `found` for each non-empty part of a list parted by ";", until it answers true.
template<class Found>
bool AnyOf(std::string_view list, const Found& found)
{
    while (!list.empty()) {
        const std::string_view part = list.substr(0, list.find(';'));
        if (!part.empty() && found(String(part)))
            return true;
        list.remove_prefix(std::min(part.size() + 1, list.size()));
    }
    return false;
}

const Registration* Registered(const String& name)
{
    const auto& all = Registrations();
    const auto found
        = std::ranges::find_if(all, [&](const Registration& r) { return Compare(r.name, name) == 0; });
    return found == all.end() ? nullptr : &*found;
}

bool HasExtension(const String& fileName, const String& extension)
{
    const auto length = static_cast<std::int64_t>(extension.Bytes().size());
    // A name that is nothing but the extension is a hidden file without one.
    return fileName.Bytes().size() > extension.Bytes().size()
        && Compare(Right(fileName, length), extension) == 0;
}

} // namespace

void RuntimeRegisterFileType(const String& name, const String& macCreator, const String& macType,
    const String& extensions, const String& uti)
{
    RuntimeDeregisterFileType(name);
    Registrations().push_back({ name, macCreator, macType, extensions, uti });
}

void RuntimeDeregisterFileType(const String& name)
{
    std::erase_if(Registrations(), [&](const Registration& r) { return Compare(r.name, name) == 0; });
}

bool filetypes::FitsByName(const String& accepted, const String& fileName)
{
    return AnyOf(accepted.Bytes(), [&](const String& type) {
        const Registration* const registration = Registered(type);
        return registration != nullptr
            && AnyOf(registration->extensions.Bytes(),
                [&](const String& extension) { return HasExtension(fileName, extension); });
    });
}

bool filetypes::FitsByContent(const std::string& path) noexcept
{
    try {
        const FileBytes head = ReadFile(path, imaging::kProbeBytes);
        return std::ranges::any_of(
            imaging::All(), [&](const imaging::Codec* codec) { return codec->probe(head.View()); });
    } catch (const RuntimeException&) {
        return false; // what cannot be read is passed over, as any item that does not fit
    }
}

} // namespace veltrane
