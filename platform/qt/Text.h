#pragma once

#include <QString>
#include <string_view>

#include "platform/values/String.h"

namespace veltrane::qt {

/// Our bytes as text for the screen; bytes outside valid UTF-8 show as U+FFFD.
[[nodiscard]] QString ToQString(std::string_view bytes);
[[nodiscard]] QString ToQString(const String& text);

/// The same as one harmless line: control characters, line ends and marks that turn the writing direction
/// show as symbols. For titles, and for whatever else may hold a file's name.
[[nodiscard]] QString ToLine(QString text);
[[nodiscard]] QString ToLine(const String& text);

/// For widgets that take "&" for a mnemonic: the text as it stands.
[[nodiscard]] QString WithoutMnemonics(QString text);

/// For window titles, where Qt takes "[*]" for a placeholder: the text as it stands.
[[nodiscard]] QString WithoutPlaceholders(QString text);

/// Lets a run of more than `longest` signs without a blank be broken, so that a box can be kept narrow.
[[nodiscard]] QString WithBreaks(const QString& text, int longest);

} // namespace veltrane::qt
