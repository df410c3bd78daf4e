#pragma once

#include "platform/widgets/Control.h"

namespace veltrane {

/// A frame with a caption around the controls that name it as their parent.
class GroupBox final : public RectControl {
public:
    [[nodiscard]] const String& Caption() const noexcept { return caption; }
    [[nodiscard]] const TextStyle& Style() const noexcept { return style; }

protected:
    [[nodiscard]] bool TakeProperty(const Property& property) override;

private:
    String caption;
    TextStyle style;
};

} // namespace veltrane
