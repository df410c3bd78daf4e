#pragma once

#include "platform/pictures/Graphics.h"
#include "platform/widgets/Control.h"

namespace veltrane {

/// A line of text that the user only reads.
class Label final : public RectControl {
public:
    enum class Align { Left = 0, Centre = 1, Right = 2 };

    /// Shown as plain text: no mark-up and no mnemonic takes effect.
    [[nodiscard]] String Text() const;
    void Text(const String& shown);

    [[nodiscard]] Align TextAlign() const noexcept { return static_cast<Align>(textAlign); }
    [[nodiscard]] Colour TextColor() const noexcept { return static_cast<Colour>(textColor); }
    [[nodiscard]] bool Multiline() const noexcept { return multiline; }
    [[nodiscard]] bool Selectable() const noexcept { return selectable; }
    [[nodiscard]] const TextStyle& Style() const noexcept { return style; }

protected:
    [[nodiscard]] bool TakeProperty(const Property& property) override;

private:
    String text, dataSource, dataField;
    TextStyle style;
    std::int64_t textAlign = 0;
    std::int64_t textColor = 0; ///< black: the theme's own text colour
    bool multiline = false, selectable = false;
};

} // namespace veltrane
