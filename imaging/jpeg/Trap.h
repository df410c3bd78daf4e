#pragma once

#include <csetjmp>
#include <exception>
#include <memory>
#include <utility>

struct jpeg_error_mgr;

namespace veltrane::imaging::jpeg {

/// Turns the library's failures into exceptions. The library is C: an error leaves it by longjmp, which runs
/// no destructor, and no exception may pass through it.
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

    /// From a callback of the library: ends Run with the kept exception. No frame in between may have
    /// anything to destroy.
    [[noreturn]] void Leave() noexcept;

    /// From a callback of the library: ends Run because pixels cannot be decoded.
    [[noreturn]] void LeaveDamaged() noexcept;

    /// Whether the file has ended without EOI.
    [[nodiscard]] bool SawEnd() const noexcept { return sawEnd; }

    /// From now on a missing EOI counts as damage. For arithmetic coding: its decoder reads zeros at the end
    /// of the file without a warning.
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
