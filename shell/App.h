#pragma once

#include "platform/run/Application.h"

namespace veltrane {

class App;

/// The application object; nil before it is registered.
Ref<class App> App();

/// The application: loads the settings at the start, takes documents in, stores the settings at the end.
class App final : public Application {
    struct Clef {
        explicit Clef() = default;
    };

public:
    explicit App(Clef) { }

    void Event_Open() override;
    void Event_OpenDocument(const Ref<FolderItem>& item) override;
    void Event_Close() override;
    void Constructor() override;

private:
    friend void _NewAppInstance();
};

} // namespace veltrane
