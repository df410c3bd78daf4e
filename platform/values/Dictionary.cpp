#include "platform/values/Dictionary.h"

#include "platform/values/Exceptions.h"

namespace veltrane {

namespace {

// Two keys fold to the same bytes exactly when Compare calls them equal.
std::string Folded(const Variant& key)
{
    std::string bytes(VariantToString(key).Bytes());
    for (char& byte : bytes) {
        if (byte >= 'A' && byte <= 'Z')
            byte = static_cast<char>(byte + ('a' - 'A'));
    }
    return bytes;
}

} // namespace

Dictionary::Dictionary(std::initializer_list<Pair> given)
{
    for (const auto& [key, value] : given)
        Value(key, value);
}

std::int64_t Dictionary::Count() const noexcept
{
    return static_cast<std::int64_t>(entries.size());
}

bool Dictionary::HasKey(const Variant& key) const
{
    return places.contains(Folded(key));
}

Variant Dictionary::Key(std::int64_t index) const
{
    if (index < 0 || index >= Count())
        throw OutOfBoundsException();
    return entries[static_cast<std::size_t>(index)].first;
}

Variant Dictionary::Value(const Variant& key) const
{
    const auto found = places.find(Folded(key));
    if (found == places.end())
        throw OutOfBoundsException();
    return entries[found->second].second;
}

void Dictionary::Value(const Variant& key, const Variant& value)
{
    const auto [place, added] = places.try_emplace(Folded(key), entries.size());
    if (added)
        entries.emplace_back(key, value);
    else
        entries[place->second].second = value;
}

} // namespace veltrane
