#include "platform/none/NoneToolkit.h"

#include "platform/pictures/Picture.h"
#include "platform/run/Runtime.h"
#include "platform/widgets/Canvas.h"
#include "platform/widgets/Window.h"

namespace veltrane {

namespace {

/// Writes down what is drawn.
class RecordingGraphics final : public Graphics {
public:
    RecordingGraphics(const Rect& bounds, std::vector<Drawing>& record) : bounds(bounds), record(record) { }
    [[nodiscard]] std::int64_t Width() const override { return bounds.width; }
    [[nodiscard]] std::int64_t Height() const override { return bounds.height; }
    void FillRect(double x, double y, double width, double height) override
    {
        record.push_back({ Drawing::Kind::Fill, ForeColor(), x, y, width, height });
    }
    void DrawPicture(const Ref<Picture>& picture, double x, double y, double width, double height,
        double sourceX, double sourceY, double sourceWidth, double sourceHeight) override
    {
        (void)picture->Width(); // nil is refused here as on a screen
        record.push_back(
            { Drawing::Kind::Picture, 0, x, y, width, height, sourceX, sourceY, sourceWidth, sourceHeight });
    }

private:
    Rect bounds;
    std::vector<Drawing>& record;
};

class NoneWindowPeer final : public WindowPeer {
public:
    NoneWindowPeer(Window& window, NoneToolkit& toolkit) : window(window), toolkit(toolkit) { }
    void Show() override { toolkit.trace.emplace_back("show"); }
    void Hide() override { toolkit.trace.emplace_back("hide"); }
    void ShowTitle() override { toolkit.trace.push_back("title " + std::string(window.Title().Bytes())); }
    void ShowMenuBar() override { }
    void ShowAcceptedTypes() override { }
    void ShowControl(RectControl&) override { }
    void RefreshControl(RectControl& control, bool) override
    {
        auto* const canvas = dynamic_cast<Canvas*>(&control);
        if (canvas == nullptr)
            return;
        auto& record = toolkit.paints.emplace_back();
        const Rect whole { 0, 0, canvas->Bounds().width, canvas->Bounds().height };
        canvas->PaintOn(New<RecordingGraphics>(whole, record), { &whole, 1 });
    }

private:
    Window& window;
    NoneToolkit& toolkit;
};

} // namespace

NoneToolkit::NoneToolkit() = default;
NoneToolkit::~NoneToolkit() = default;

std::unique_ptr<WindowPeer> NoneToolkit::MakeWindowPeer(Window& window)
{
    return std::make_unique<NoneWindowPeer>(window, *this);
}

void NoneToolkit::Loop()
{
    while (!ended) {
        if (wakeUps > 0) {
            --wakeUps;
            Runtime::Current().RunNextEvent();
        } else if (!user.empty()) {
            const auto action = std::move(user.front());
            user.pop_front();
            action();
        } else {
            Runtime::Current().RequestQuit();
        }
    }
}

void NoneToolkit::Yield()
{
    if (duringYield)
        duringYield();
}

Box::Answer NoneToolkit::ShowBox(const Box& box)
{
    boxes.push_back(box);
    return answer ? answer(box) : Box::Answer::Ok;
}

} // namespace veltrane
