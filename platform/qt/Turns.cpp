#include "platform/qt/Turns.h"

#include <utility>

#include "platform/qt/widgets/Edge.h"
#include "platform/run/Runtime.h"

namespace veltrane::qt {

namespace {

constexpr int kLongestWaitForPaint = 500; // ms; a window may be hidden or minimised from the start

} // namespace

Turns::Turns()
{
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { Turn(); });
}

void Turns::WakeUp()
{
    // A timer of 0 fires when nothing else is left to do.
    if (!timer.isActive())
        timer.start(0);
}

void Turns::AwaitPaint()
{
    awaitsPaint = true;
    sinceShown.start();
}

void Turns::Painted()
{
    if (std::exchange(awaitsPaint, false) && timer.isActive())
        timer.start(0);
}

void Turns::Turn()
{
    if (holds > 0) {
        missed = true;
        return;
    }
    if (awaitsPaint && !sinceShown.hasExpired(kLongestWaitForPaint)) {
        timer.start(kLongestWaitForPaint);
        return;
    }
    AtEdge([] { Runtime::Current().RunNextEvent(); });
}

void Turns::Release()
{
    if (--holds == 0 && std::exchange(missed, false))
        WakeUp();
}

} // namespace veltrane::qt
