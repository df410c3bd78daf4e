#pragma once

#include <concepts>
#include <cstdint>

#include "platform/widgets/Control.h"

namespace veltrane {

/// A thumb on a line between Minimum and Maximum.
class Slider final : public RectControl {
public:
    /// Raised once, when all controls of the window exist.
    Event<const Ref<Slider>&> Open;

    /// Raised when the value has moved, by the user or by code.
    Event<const Ref<Slider>&> ValueChanged;

    /// From Minimum to Maximum.
    [[nodiscard]] std::int64_t Value() const;

    /// Kept within Minimum and Maximum; raises ValueChanged when it moved.
    void Value(std::int64_t position);
    void Value(std::same_as<bool> auto) = delete;

    [[nodiscard]] std::int64_t Minimum() const noexcept { return minimum; }
    [[nodiscard]] std::int64_t Maximum() const noexcept { return maximum; }
    [[nodiscard]] std::int64_t LineStep() const noexcept { return lineStep; }
    [[nodiscard]] std::int64_t PageStep() const noexcept { return pageStep; }
    [[nodiscard]] bool LiveScroll() const noexcept { return liveScroll; }

    void RaiseOpen() override;

    /// For bodies: the user has moved the thumb. Runs ValueChanged under the application's failure rule.
    void TakeValue(std::int64_t position);

protected:
    [[nodiscard]] bool TakeProperty(const Property& property) override;

private:
    /// Brings the value into the range; true when `position` is news.
    [[nodiscard]] bool Move(std::int64_t position);

    std::int64_t value = 0, minimum = 0, maximum = 100, lineStep = 1, pageStep = 10, tickStyle = 0;
    bool liveScroll = true;
};

} // namespace veltrane
