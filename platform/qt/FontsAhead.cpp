#include "platform/qt/FontsAhead.h"

#include <csignal>
#include <system_error>

#include "imaging/pict/text/FontConfiguration.h"

namespace veltrane::qt {

namespace {

// Signals are for the main thread: a new thread has the mask of the one that makes it.
class SignalsHeld {
public:
    SignalsHeld() noexcept
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t before {};
};

} // namespace

FontsAhead::FontsAhead() noexcept
{
    const SignalsHeld held;
    try {
        reader = std::jthread(imaging::pict::ReadFontConfiguration);
    } catch (const std::system_error&) {
        // The toolkit reads them itself.
    }
}

void FontsAhead::Finish()
{
    if (reader.joinable())
        reader.join();
}

} // namespace veltrane::qt
