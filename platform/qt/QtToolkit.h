#pragma once

#include <memory>

#include "platform/run/Toolkit.h"

namespace veltrane {

class OneWindow;

/// The body that shows windows through Qt; one per process, before any other use of the toolkit. Also
/// registers the fallback codec. `oneWindow`, which must outlive it, is left when the loop ends.
/// Where there is no screen it tells so on the error stream and ends the process with status 1: the toolkit
/// knows no other way back from there.
[[nodiscard]] std::unique_ptr<Toolkit> MakeQtToolkit(OneWindow& oneWindow);

/// Registers, as the codec that is asked last, whatever the installed Qt plugins read. Works without a
/// screen and without MakeQtToolkit.
void RegisterQtFallback();

} // namespace veltrane
