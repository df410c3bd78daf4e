#include "platform/qt/widgets/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QLayout>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QUrl>
#include <QWindow>
#include <algorithm>

#include "platform/qt/widgets/Edge.h"
#include "platform/qt/widgets/MenuView.h"
#include "platform/run/Runtime.h"
#include "platform/widgets/DragItem.h"

namespace veltrane::qt {

namespace {

// As they came, percent-encoded: a path of any bytes would not survive a QString.
std::vector<std::string> AddressesOf(const QMimeData& payload)
{
    std::vector<std::string> addresses;
    for (const QUrl& address : payload.urls())
        addresses.push_back(address.toEncoded().toStdString());
    return addresses;
}

} // namespace

MainWindow::MainWindow(Window& window, std::function<void()> onPaint)
    : window(window)
    , form(*new Form(
          window, [this] { TakeSizeOfWindow(); }, std::move(onPaint)))
{
    setCentralWidget(&form);
    setContextMenuPolicy(Qt::NoContextMenu);
    ShowButtons();
    ShowMenuBar();
    OpenMenusByKey();
}

// The key that most desktops have for it; the toolkit knows only Alt.
void MainWindow::OpenMenusByKey()
{
    auto* const key = new QShortcut(Qt::Key_F10, this);
    QObject::connect(key, &QShortcut::activated, this, [this] {
        if (!menuBar()->isHidden() && !menuBar()->actions().isEmpty())
            menuBar()->setActiveAction(menuBar()->actions().constFirst());
    });
}

void MainWindow::ShowButtons()
{
    setWindowFlag(Qt::WindowCloseButtonHint, window.CloseButton());
    setWindowFlag(Qt::WindowMinimizeButtonHint, window.MinimizeButton());
    setWindowFlag(Qt::WindowMaximizeButtonHint, window.MaximizeButton());
    setWindowFlag(Qt::WindowFullscreenButtonHint, window.FullScreenButton());
}

void MainWindow::ShowMenuBar()
{
    ShowMenus(*menuBar(), window.MenuBar());
    menuBar()->setVisible(window.MenuBarVisible() && window.MenuBar());
}

void MainWindow::TakeSizeOfWindow()
{
    BoundSize();
    const bool free = (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) == 0;
    if (free) {
        SizeContent(form.InPixels(window.Width(), window.Height()));
    }
    if (!window.Resizeable())
        setFixedSize(size());
    form.FollowSize();
}

// No larger than the screen has room for, where a large font or scale would ask for more.
void MainWindow::SizeContent(QSize wanted)
{
    resize(wanted + QSize(0, menuBar()->sizeHint().height()));
    // Now the layout tells what the frame around the content takes.
    layout()->activate();
    const QSize whole = size() + wanted - form.size();
    const QSize decoration(0, style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this));
    resize(whole.boundedTo(screen()->availableSize() - decoration));
    layout()->activate();
}

// At a scale factor the toolkit has windows grow in steps of whole units, and left unset it begins them at -2
// pixels: a window manager then gives a unit less than was asked.
void MainWindow::BeginStepsAtZero()
{
    (void)winId(); // makes the window handle
    windowHandle()->setBaseSize(QSize(0, 0));
}

void MainWindow::BoundSize()
{
    const QSize most = form.InPixels(window.MaxWidth(), window.MaxHeight());
    const int bar = menuBar()->isHidden() ? 0 : menuBar()->sizeHint().height();
    form.setMinimumSize(form.InPixels(window.MinWidth(), window.MinHeight()));
    setMaximumSize(std::min(most.width(), QWIDGETSIZE_MAX), std::min(most.height() + bar, QWIDGETSIZE_MAX));
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // The window goes in its turn, once no handler is under way.
    event->ignore();
    AtEdge([this] { Runtime::Current().RequestClose(Ref<Window>(&window)); });
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    dragFits = false;
    AtEdge([&] {
        dragFits = (event->possibleActions() & Qt::CopyAction) != 0
            && DragItem::HoldsAnyOf(AddressesOf(*event->mimeData()), window.AcceptedTypes());
    });
    dragMoveEvent(event);
}

void MainWindow::dragMoveEvent(QDragMoveEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(dragFits);
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(dragFits);
    if (!dragFits)
        return;
    // Only noted here: the sender waits for the answer to this event, not for the conversion.
    AtEdge([&] {
        Runtime::Current().Drop(
            Ref<Window>(&window), New<DragItem>(AddressesOf(*event->mimeData()), window.AcceptedTypes()));
    });
}

QWidget* VisibleWindow()
{
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && dynamic_cast<MainWindow*>(widget) != nullptr)
            return widget;
    }
    return nullptr;
}

} // namespace veltrane::qt
