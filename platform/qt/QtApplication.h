#pragma once

#include <QApplication>

namespace veltrane::qt {

/// Qt's application object. Reports what the desktop asks of the program as a whole: opening a document,
/// the end of the session.
class QtApplication final : public QApplication {
public:
    QtApplication(int& count, char** arguments);

protected:
    bool event(QEvent* event) override;
};

} // namespace veltrane::qt
