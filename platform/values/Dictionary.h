#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/values/Ref.h"
#include "platform/values/Variant.h"

namespace veltrane {

/// A key and its value.
using Pair = std::pair<Variant, Variant>;

/// A hash table from keys to values. Keys are compared as Compare does, and keep the form in which they
/// came first. The table's own order is the order in which the keys came in.
class Dictionary final : public Counted {
public:
    Dictionary(std::initializer_list<Pair> entries);

    [[nodiscard]] std::int64_t Count() const noexcept;
    [[nodiscard]] bool HasKey(const Variant& key) const;

    /// The key at `index`, 0 to Count - 1. Raises OutOfBoundsException for another index.
    [[nodiscard]] Variant Key(std::int64_t index) const;

    /// The value of a key that is present. Raises OutOfBoundsException when it is not.
    [[nodiscard]] Variant Value(const Variant& key) const;

    /// Adds the entry, or replaces the value of a key that is present.
    void Value(const Variant& key, const Variant& value);

private:
    std::vector<Pair> entries;
    std::unordered_map<std::string, std::size_t> places; // folded key -> index in `entries`
};

} // namespace veltrane
