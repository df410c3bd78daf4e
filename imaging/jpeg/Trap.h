#pragma once

#include <csetjmp>
#include <exception>
#include <memory>
#include <utility>

struct jpeg_error_mgr;

namespace veltrane::imaging::jpeg {

/// Brings the library's failures back to C++. The library is C: what it reports must leave it by longjmp,
/// which destroys nothing on its way, and no exception may pass through it.
class Trap {
public:
    Trap();
    ~Trap();
    Trap(const Trap&) = delete;
    Trap& operator=(const Trap&) = delete;

    /// For the `err` of a library object, which must not outlive this one.
    [[nodiscard]] jpeg_error_mgr* Errors() noexcept;

    /// Runs `step`, which calls the library and has nothing to destroy. Raises what the library reports
    /// as a Fault, or what was kept.
    template<class Step>
    void Run(Step step)
    {
        if (setjmp(back) == 0)
            step();
        else
            Raise();
    }

    /// Keeps an exception that a callback of the library has caught, for Leave.
    void Keep(std::exception_ptr caught) noexcept { thrown = std::move(caught); }

    /// From a callback of the library: ends Run with the kept exception. No frame below may have anything
    /// left to destroy.
    [[noreturn]] void Leave() noexcept;

    /// From a callback of the library: ends Run because pixels cannot be decoded.
    [[noreturn]] void LeaveDamaged() noexcept;

    /// The file has ended before its end mark.
    [[nodiscard]] bool SawEnd() const noexcept { return sawEnd; }

    /// From now on the missing end mark counts as damage. For arithmetic coding: its decoder takes the
    /// end for zeros without a word.
    void EndIsDamage() noexcept { endIsDamage = true; }

private:
    struct Manager;

    [[noreturn]] void Raise() const;
    [[noreturn]] void RaiseDamaged() const;
    void Warned(int code, int marker) noexcept;

    std::unique_ptr<Manager> manager;
    std::jmp_buf back {};
    std::exception_ptr thrown;
    int code = 0;
    bool sawEnd = false;
    bool endIsDamage = false;
};

} // namespace veltrane::imaging::jpeg
