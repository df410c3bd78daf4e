#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace veltrane {

/// An event of an object: handlers are added to it and run in that order when it is raised. A handler may
/// use anything that lives as long as the object whose event it is.
template<class... Args>
class Event {
public:
    using Delegate = std::function<void(Args...)>;

    void Add(Delegate handler) { handlers.push_back(std::move(handler)); }

    /// Runs the handlers; what one of them raises ends the run and leaves here. Whoever calls this from a
    /// toolkit's event does it inside Runtime::Guard.
    void Raise(Args... args) const
    {
        for (const Delegate& handler : handlers)
            handler(args...);
    }

private:
    std::vector<Delegate> handlers;
};

} // namespace veltrane
