#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <typeinfo>
#include <utility>

namespace veltrane {

/// Raises NilObjectException. Out of line, so that every `->` stays small; `type` is for the debugger.
[[noreturn]] void RaiseNilObject(const std::type_info& type);

/// Base of every object handled through a Ref. Starts with no owner; the last Ref deletes it.
class Counted {
public:
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

protected:
    Counted() = default;
    virtual ~Counted() = default;

private:
    template<class T>
    friend class Ref;
    mutable std::atomic<long> owners { 0 };
};

/// A counted reference that may be nil, and says so: `->` and `*` on nil raise NilObjectException.
/// One pointer wide. Two references are equal when they hold the same object.
template<class T>
class Ref {
public:
    Ref() noexcept = default;
    Ref(std::nullptr_t) noexcept { }
    explicit Ref(T* object) noexcept : object(object) { Acquire(); }
    Ref(const Ref& other) noexcept : object(other.object) { Acquire(); }
    Ref(Ref&& other) noexcept : object(std::exchange(other.object, nullptr)) { }
    template<class U>
    requires std::convertible_to<U*, T*> Ref(const Ref<U>& other)
    noexcept : object(other.Get()) { Acquire(); }
    Ref& operator=(Ref other) noexcept
    {
        std::swap(object, other.object);
        return *this;
    }
    ~Ref() { Release(); }

    [[nodiscard]] T* operator->() const { return Checked(); }
    [[nodiscard]] T& operator*() const { return *Checked(); }

    /// The bare pointer, nil allowed; for the seam's own bodies.
    [[nodiscard]] T* Get() const noexcept { return object; }

    explicit operator bool() const noexcept { return object != nullptr; }
    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object == b.object; }

private:
    [[nodiscard]] T* Checked() const
    {
        if (object == nullptr) [[unlikely]]
            RaiseNilObject(typeid(T));
        return object;
    }
    void Acquire() const noexcept
    {
        if (object != nullptr)
            static_cast<const Counted*>(object)->owners.fetch_add(1, std::memory_order_relaxed);
    }
    void Release() const noexcept
    {
        if (object == nullptr)
            return;
        const Counted* const counted = object;
        if (counted->owners.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete counted;
    }

    T* object = nullptr;
};

/// The one way to make a counted object.
template<class T, class... Args>
[[nodiscard]] Ref<T> New(Args&&... args)
{
    return Ref<T>(new T(std::forward<Args>(args)...));
}

/// The same object under a class derived from its own; nil when it is nil or of another class.
template<class T, class U>
[[nodiscard]] Ref<T> Cast(const Ref<U>& from) noexcept
{
    return Ref<T>(dynamic_cast<T*>(from.Get()));
}

} // namespace veltrane
