#include "imaging/pict/text/Fonts.h"

#include <algorithm>
#include <array>

namespace veltrane::imaging::pict {

namespace {

struct Known {
    int number;
    std::string_view name;
    Substitute substitute;
};

constexpr double kSans = 0.489; ///< Helvetica
constexpr double kRoman = 0.459; ///< Times
constexpr double kTypewriter = 0.6; ///< Courier

constexpr std::array kKnown = std::to_array<Known>({
    { 0, "Chicago", { "Helvetica", 0.53, true } },
    { 1, "", { "Helvetica", kSans } }, // the application's font: Geneva
    { 2, "New York", { "Times", 0.5 } },
    { 3, "Geneva", { "Helvetica", 0.52 } },
    { 4, "Monaco", { "Courier", kTypewriter } },
    { 5, "Venice", { "Zapf Chancery", 0.42 } },
    { 6, "London", { "Times", kRoman } },
    { 7, "Athens", { "Times", 0.5, true } },
    { 9, "Toronto", { "Times", 0.5 } },
    { 13, "Zapf Dingbats", { "Dingbats", 0 } },
    { 14, "Bookman", { "Bookman", 0.54 } },
    { 15, "N Helvetica Narrow", { "Helvetica Narrow", 0.401 } },
    { 16, "Palatino", { "Palatino", 0.5 } },
    { 18, "Zapf Chancery", { "Zapf Chancery", 0.4 } },
    { 20, "Times", { "Times", kRoman } },
    { 21, "Helvetica", { "Helvetica", kSans } },
    { 22, "Courier", { "Courier", kTypewriter } },
    { 23, "Symbol", { "Times", kRoman, false, true } },
    { 33, "Avant Garde", { "Avant Garde", 0.54 } },
    { 34, "New Century Schlbk", { "New Century Schoolbook", 0.5 } },
});

} // namespace

Substitute SubstituteFor(const TextStyle& style)
{
    const auto named = style.names.find(style.font);
    const std::string_view name = named == style.names.end() ? std::string_view() : named->second;
    const auto same = [&style, name](const Known& known) {
        return name.empty() ? known.number == style.font : known.name == name;
    };
    const auto found = std::ranges::find_if(kKnown, same);
    if (found != kKnown.end())
        return found->substitute;
    if (!name.empty())
        return { name, 0 }; // perhaps this machine has it
    return { "Helvetica", kSans };
}

} // namespace veltrane::imaging::pict
