#pragma once

#include <QWidget>

namespace veltrane::qt {

/// A widget that screen readers announce as a picture.
class PictureWidget : public QWidget {
public:
    using QWidget::QWidget;
};

/// Teaches Qt about our own widgets; once per run.
void InstallAccessibility();

/// Gives the widget the name that screen readers tell; told to them when it is news.
void NameForReaders(QWidget& widget, const QString& name);

} // namespace veltrane::qt
