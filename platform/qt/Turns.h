#pragma once

#include <QElapsedTimer>
#include <QTimer>

namespace veltrane::qt {

/// Gives the waiting events their turns: one for each pass of the event loop, behind painting and input.
class Turns {
public:
    Turns();

    /// One turn is wanted.
    void WakeUp();

    /// A window is about to appear: no turn before it has been painted, or has had the time for it. The
    /// first document would otherwise be worked on behind a window that is still empty.
    void AwaitPaint();
    void Painted();

    /// While one of these lives no turn is given: code of ours waits further down the stack.
    class Hold {
    public:
        explicit Hold(Turns& turns) noexcept : turns(turns) { ++turns.holds; }
        ~Hold() { turns.Release(); }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        Turns& turns;
    };

private:
    void Turn();
    void Release();

    QTimer timer;
    QElapsedTimer sinceShown;
    int holds = 0;
    bool awaitsPaint = false, missed = false;
};

} // namespace veltrane::qt
