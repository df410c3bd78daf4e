#pragma once

#include <concepts>
#include <cstdint>

#include "platform/values/Dictionary.h"
#include "platform/values/String.h"

namespace veltrane {

/// The user's settings from one run to the next: a table of text keys and text values, and its file in the
/// user's preferences folder. The file is read once when the application opens and written once when it
/// closes; in between the table is the only copy.
namespace BoPreference {

/// Fills the table from the file; no file leaves it empty. Raises IOException when there is one and it
/// cannot be read; what was read before stays.
void prefLecture();

/// Writes the table to the file, whole. Raises IOException; the old file then stands as it was.
void prefSauvegarde();

/// The value under the key: true for "OK", false for any other text; `preset` when the key is missing.
[[nodiscard]] bool getPrefBoolean(const String& key, bool preset);

/// The number under the key, truncated; 0 for text that is none; `preset` when the key is missing.
[[nodiscard]] std::int64_t getPrefInteger(const String& key, std::int64_t preset);

/// Stores the value as text under the key. All four raise NilObjectException before prefLecture.
void setPref(const String& key, std::same_as<bool> auto value);
void setPref(const String& key, std::int64_t value);

/// The file's name, after the program's: "Veltrane.pref".
[[nodiscard]] String getPrefNomPreference();

/// For setPref: stores text under the key.
void StoreText(const String& key, const String& text);

} // namespace BoPreference

void BoPreference::setPref(const String& key, std::same_as<bool> auto value)
{
    StoreText(key, value ? "OK" : "ko");
}

} // namespace veltrane
