#pragma once

#include <concepts>

#include "platform/widgets/Control.h"

namespace veltrane {

/// A box that is ticked or clear, with a caption.
class CheckBox final : public RectControl {
public:
    [[nodiscard]] const String& Caption() const noexcept { return caption; }
    [[nodiscard]] const TextStyle& Style() const noexcept { return style; }

    [[nodiscard]] bool Value() const;
    void Value(std::same_as<bool> auto ticked) { SetValue(ticked); }

    /// For bodies: the user has ticked or cleared the box.
    void TakeValue(bool ticked) noexcept { value = ticked; }

protected:
    [[nodiscard]] bool TakeProperty(const Property& property) override;

private:
    void SetValue(bool ticked);

    String caption, dataField, dataSource;
    TextStyle style;
    std::int64_t state = 0;
    bool value = false;
};

} // namespace veltrane
