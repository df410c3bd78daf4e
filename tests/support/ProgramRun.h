#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/none/NoneToolkit.h"
#include "platform/run/Runtime.h"
#include "tests/support/Scratch.h"

namespace veltrane::tests {

/// The whole program on the body without a screen, with settings and pictures of its own. Plain pictures
/// are read besides the real formats: "PLAIN 4 3 112233" is a picture of 4 x 3 pixels of one colour.
class ProgramRun {
public:
    ProgramRun();
    ~ProgramRun();

    Scratch settings, pictures;
    NoneToolkit body;
    Runtime runtime { body };

    /// Runs the program from start to end; the user does what `body.user` says, then quits.
    void Go();

    /// The preference file's content, and setting it before the run.
    [[nodiscard]] std::string Settings() const { return settings.Read(kPreferenceFile); }
    void Settings(std::string_view content) const { settings.Write(kPreferenceFile, content); }

    /// Writes a plain picture.
    void Plain(std::string_view name, int width = 4, int height = 3) const;

    /// How many plain pictures have been decoded, each as often as it was.
    [[nodiscard]] int PlainDecoded() const;

    /// Has the desktop open the file; before Go or from `body.user`.
    void Open(std::string_view name);

    /// Drops the files on the window.
    void Drop(const std::vector<std::string>& names);
    [[nodiscard]] std::string Address(std::string_view name) const { return "file://" + pictures.Path(name); }

    [[nodiscard]] std::vector<std::string> Messages() const;

    static constexpr const char* kPreferenceFile = "veltrane_tests.pref";
};

} // namespace veltrane::tests
