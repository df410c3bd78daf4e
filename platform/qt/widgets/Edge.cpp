#include "platform/qt/widgets/Edge.h"

#include <exception>
#include <iostream>

#include "platform/run/Runtime.h"
#include "platform/values/Exceptions.h"

namespace veltrane::qt {

namespace {

void Fail(std::string_view fault, std::string_view message) noexcept
{
    std::cerr << "Veltrane : erreur interne : " << fault << (message.empty() ? "" : " : ") << message
              << std::endl;
    Runtime::Current().Fail();
}

} // namespace

void AtEdge(const std::function<void()>& routine) noexcept
{
    try {
        routine();
    } catch (const RuntimeException& failure) {
        Fail(failure.ClassName(), failure.Message().Bytes());
    } catch (const std::exception& fault) {
        Fail("exception", fault.what());
    } catch (...) {
        Fail("exception inconnue", {});
    }
}

} // namespace veltrane::qt
