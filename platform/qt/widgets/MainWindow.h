#pragma once

#include <QMainWindow>
#include <functional>

#include "platform/qt/widgets/Form.h"
#include "platform/widgets/Window.h"

namespace veltrane::qt {

/// The toolkit's window around a form: the frame, the close button, drops.
class MainWindow final : public QMainWindow {
public:
    /// `onPaint` is called whenever the content has been painted.
    MainWindow(Window& window, std::function<void()> onPaint);

    [[nodiscard]] Form& Content() noexcept { return form; }

    /// Fills the menu bar from the window's, and shows it if the window says so.
    void ShowMenuBar();

    /// Has window managers give the size that is asked for, at any scale; before the window is first shown.
    void BeginStepsAtZero();

    /// Gives the content the size that the window states, and the bounds of it.
    void TakeSizeOfWindow();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void SizeContent(QSize wanted);
    void BoundSize();
    void ShowButtons();
    void OpenMenusByKey();

    Window& window;
    Form& form;
    bool dragFits = false; // the answer for the drag that hovers; asked once, when it enters
};

/// The window that is on the screen, also when minimised; null while none is.
[[nodiscard]] QWidget* VisibleWindow();

} // namespace veltrane::qt
