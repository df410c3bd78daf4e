#include "platform/qt/QtToolkit.h"

#include <QCursor>
#include <QElapsedTimer>
#include <cstdlib>
#include <iostream>

#include "platform/qt/FontsAhead.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtWindowPeer.h"
#include "platform/qt/Signals.h"
#include "platform/qt/Turns.h"
#include "platform/qt/onewindow/OneWindow.h"
#include "platform/qt/widgets/Accessibility.h"
#include "platform/qt/widgets/MainWindow.h"
#include "platform/qt/widgets/MessageBox.h"
#include "platform/run/Runtime.h"

namespace veltrane {

namespace {

using namespace qt;

// The toolkit is given the program's name and none of its arguments: those are all documents.
int argumentCount = 1;
char programName[] = "Veltrane";
char* arguments[] = { programName, nullptr };

constexpr qint64 kBetweenYields = 8; // ms; a turn of the loop costs too much to be made for each small file
constexpr int kLongestYield = 20; // ms

class QtToolkit final : public Toolkit {
public:
    explicit QtToolkit(OneWindow& oneWindow);

    // Qt 6 always draws in logical units, and the canvas at the screen's real pixels.
    void SupportsHiDPI(bool) override { }
    [[nodiscard]] std::unique_ptr<WindowPeer> MakeWindowPeer(Window& window) override
    {
        return std::make_unique<QtWindowPeer>(window, turns);
    }
    void Loop() override;
    void EndLoop() override;
    void WakeUp() override { turns.WakeUp(); }
    void Yield() override;
    [[nodiscard]] Box::Answer ShowBox(const Box& box) override;
    void CloseBox() override { messageBox.Close(); }
    void BusyPointer(bool nowBusy) override;

private:
    OneWindow& oneWindow;
    FontsAhead fonts; // begun before the toolkit starts
    QtApplication application;
    Signals signals;
    Turns turns;
    MessageBox messageBox;
    QElapsedTimer sinceYield;
    bool ended = false, busy = false;
};

QtToolkit::QtToolkit(OneWindow& oneWindow)
    : oneWindow(oneWindow)
    , application(argumentCount, arguments)
    , signals([] { Runtime::Current().RequestEnd(); })
{
    fonts.Finish();
    InstallAccessibility();
    sinceYield.start();
}

void QtToolkit::Loop()
{
    if (!ended)
        QApplication::exec();
}

void QtToolkit::EndLoop()
{
    ended = true;
    oneWindow.Leave();
    QCoreApplication::exit();
}

void QtToolkit::Yield()
{
    if (sinceYield.elapsed() < kBetweenYields)
        return;
    const Turns::Hold hold(turns);
    QCoreApplication::processEvents(QEventLoop::AllEvents, kLongestYield);
    sinceYield.start();
}

Box::Answer QtToolkit::ShowBox(const Box& box)
{
    const Turns::Hold hold(turns);
    const bool wasBusy = busy;
    BusyPointer(false);
    const Box::Answer answer = messageBox.Run(box, VisibleWindow());
    BusyPointer(wasBusy);
    return answer;
}

void QtToolkit::BusyPointer(bool nowBusy)
{
    if (std::exchange(busy, nowBusy) == nowBusy)
        return;
    if (nowBusy)
        QApplication::setOverrideCursor(Qt::BusyCursor);
    else
        QApplication::restoreOverrideCursor();
}

// Qt ends a process that has no screen by abort; this is the only word in between.
void EndWithoutScreen(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    std::cerr << message.toStdString() << std::endl;
    if (type != QtFatalMsg)
        return;
    std::cerr << "Veltrane : impossible d'ouvrir une fenêtre : aucun écran n'est accessible." << std::endl;
    std::_Exit(EXIT_FAILURE);
}

} // namespace

std::unique_ptr<Toolkit> MakeQtToolkit(OneWindow& oneWindow)
{
    const QtMessageHandler usual = qInstallMessageHandler(EndWithoutScreen);
    auto toolkit = std::make_unique<QtToolkit>(oneWindow);
    qInstallMessageHandler(usual);
    RegisterQtFallback();
    return toolkit;
}

} // namespace veltrane
