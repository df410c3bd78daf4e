#pragma once

#include "platform/widgets/Menu.h"

namespace veltrane {

class MainMenuBar;

/// The one menu bar; built at the first call and kept to the end of the program.
Ref<class MainMenuBar> MainMenuBar();

/// The menus File and Edit, shared by the application and its window.
class MainMenuBar final : public MenuBar {
    struct Clef {
        explicit Clef() = default;
    };

public:
    explicit MainMenuBar(Clef) { }

    void Constructor() override;
    virtual void Untitled0(); ///< builds File
    virtual void Untitled1(); ///< builds Edit

private:
    friend Ref<class MainMenuBar> veltrane::MainMenuBar();
};

} // namespace veltrane
