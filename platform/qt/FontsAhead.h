#pragma once

#include <thread>

namespace veltrane::qt {

/// Has the machine's fonts read while the toolkit is still busy with the screen: the window wants its letters
/// measured before it is shown, and reading hundreds of small files for that took a seventh of the start.
class FontsAhead {
public:
    /// Begins on a thread of its own, which touches nothing of ours. Without a thread to be had, nothing is
    /// read ahead.
    FontsAhead() noexcept;

    /// Waits until they are read.
    void Finish();

private:
    std::jthread reader; // waits in its end as well
};

} // namespace veltrane::qt
