#pragma once

#include <cstdint>
#include <string_view>

#include "platform/values/String.h"

namespace veltrane {

/// Base class of every failure. Thrown by value, caught by reference.
class RuntimeException {
public:
    explicit RuntimeException(String message = {}, std::int64_t errorNumber = 0) noexcept
        : message(std::move(message)), errorNumber(errorNumber)
    {
    }
    virtual ~RuntimeException() = default;
    RuntimeException(const RuntimeException&) = default;
    RuntimeException& operator=(const RuntimeException&) = default;

    /// What is wrong, in the user's words; empty when nothing was said.
    [[nodiscard]] const String& Message() const noexcept { return message; }

    /// The system's error number (errno), or 0.
    [[nodiscard]] std::int64_t ErrorNumber() const noexcept { return errorNumber; }

    /// The class's own name, for developers.
    [[nodiscard]] virtual std::string_view ClassName() const noexcept { return "RuntimeException"; }

private:
    String message;
    std::int64_t errorNumber;
};

/// Gives `Derived` the base's constructors and its own name. The name is the class's, spelled once more,
/// because C++20 has no way to ask for it.
template<class Derived>
class NamedException : public RuntimeException {
public:
    using RuntimeException::RuntimeException;
    [[nodiscard]] std::string_view ClassName() const noexcept override { return Derived::kName; }
};

/// A nil reference was used.
struct NilObjectException final : NamedException<NilObjectException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "NilObjectException";
};

/// A number lies outside its documented range.
struct OutOfBoundsException final : NamedException<OutOfBoundsException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "OutOfBoundsException";
};

/// The system refused to read or write; ErrorNumber tells why.
struct IOException final : NamedException<IOException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "IOException";
};

/// The machine has not the memory for what was asked.
struct OutOfMemoryException final : NamedException<OutOfMemoryException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "OutOfMemoryException";
};

/// The bytes are of no format we read, or are damaged.
struct UnsupportedFormatException final : NamedException<UnsupportedFormatException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "UnsupportedFormatException";
};

/// The object cannot do what was asked.
struct UnsupportedOperationException final : NamedException<UnsupportedOperationException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "UnsupportedOperationException";
};

/// A menu entry that has a parent was appended again.
struct MenuHasParentException final : NamedException<MenuHasParentException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "MenuHasParentException";
};

/// A widget was touched from another thread than the main one.
struct ThreadAccessingUIException final : NamedException<ThreadAccessingUIException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "ThreadAccessingUIException";
};

/// Ends a routine without a word: the user wants no more of it.
struct EndException final : NamedException<EndException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "EndException";
};

/// Ends a thread's routine without a word.
struct ThreadEndException final : NamedException<ThreadEndException> {
    using NamedException::NamedException;
    static constexpr std::string_view kName = "ThreadEndException";
};

} // namespace veltrane
