#pragma once

#include <QMessageBox>
#include <QPointer>

#include "platform/run/Toolkit.h"

namespace veltrane::qt {

/// The one message box that may be open.
class MessageBox {
public:
    /// Shows the box over `parent`, or by itself when that is null, and returns when it has been closed.
    [[nodiscard]] Box::Answer Run(const Box& box, QWidget* parent);

    /// Closes the open box as its first button would.
    void Close();

private:
    QPointer<QMessageBox> open;
};

} // namespace veltrane::qt
