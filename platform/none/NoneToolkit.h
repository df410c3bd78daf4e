#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/pictures/Graphics.h"
#include "platform/run/Toolkit.h"
#include "platform/widgets/Rect.h"

namespace veltrane {

/// What was drawn on a canvas: one call of FillRect or DrawPicture.
struct Drawing {
    enum class Kind { Fill, Picture } kind;
    Colour colour = 0; ///< of a fill
    double x = 0, y = 0, width = 0, height = 0;
    double sourceX = 0, sourceY = 0, sourceWidth = 0, sourceHeight = 0; ///< of a picture

    friend bool operator==(const Drawing&, const Drawing&) = default;
};

/// A body without a screen: remembers what it was asked to show, and plays the user that it was given.
class NoneToolkit final : public Toolkit {
public:
    NoneToolkit();
    ~NoneToolkit() override;

    /// What the user does, one action at each turn of the loop that finds no event waiting. When all is
    /// done the user quits.
    std::deque<std::function<void()>> user;

    /// What happens during each yield; nothing when empty.
    std::function<void()> duringYield;

    /// How the user answers a box; Ok when empty.
    std::function<Box::Answer(const Box&)> answer;

    std::vector<Box> boxes; ///< all that were shown
    std::vector<std::vector<Drawing>> paints; ///< of each paint of a canvas, what was drawn
    std::vector<std::string> trace; ///< "show", "hide", "title …", "busy", "idle", in their order
    bool hiDPI = false;

    void SupportsHiDPI(bool yes) override { hiDPI = yes; }
    [[nodiscard]] std::unique_ptr<WindowPeer> MakeWindowPeer(Window& window) override;
    void Loop() override;
    void EndLoop() override { ended = true; }
    void WakeUp() override { ++wakeUps; }
    void Yield() override;
    [[nodiscard]] Box::Answer ShowBox(const Box& box) override;
    void CloseBox() override { }
    void BusyPointer(bool busy) override { trace.emplace_back(busy ? "busy" : "idle"); }

private:
    int wakeUps = 0;
    bool ended = false;
};

} // namespace veltrane
