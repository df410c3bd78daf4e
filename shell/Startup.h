#pragma once

namespace veltrane {

/// @name The start-up routines, in the order in which they run
/// @{
void _Main(); ///< the run itself; a failure in start-up ends here
void _EarlyStartup(); ///< everything before the toolkit finishes starting
void _InitFileTypes(); ///< declares the picture types
void _NewAppInstance(); ///< makes and registers the application object with its menu bar
void _LateStartup(); ///< called back once the toolkit stands
void _MakeDefaultView(); ///< makes the window
/// @}

} // namespace veltrane
