#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veltrane {

/// The path that a "file:" address means, percent signs decoded, any bytes but NUL; nothing when it is no
/// local file: another scheme, another host than this one, a relative path, a broken escape.
/// Source: RFC 8089, section 2; RFC 3986, section 2.1.
[[nodiscard]] std::optional<std::string> LocalPath(std::string_view address);

/// The address of an absolute path, for LocalPath to read: every byte that is no plain sign of a path
/// escaped, so that a name of any bytes comes through. Source: RFC 8089, section 2; RFC 3986, sections 2.1
/// and 2.3.
[[nodiscard]] std::string FileAddress(std::string_view path);

} // namespace veltrane
