#include "platform/qt/widgets/Accessibility.h"

#include <QAccessibleWidget>

namespace veltrane::qt {

namespace {

QAccessibleInterface* Describe(const QString&, QObject* object)
{
    if (auto* const picture = dynamic_cast<PictureWidget*>(object))
        return new QAccessibleWidget(picture, QAccessible::Graphic);
    return nullptr;
}

} // namespace

void InstallAccessibility()
{
    QAccessible::installFactory(Describe);
}

void NameForReaders(QWidget& widget, const QString& name)
{
    if (widget.accessibleName() != name)
        widget.setAccessibleName(name);
}

} // namespace veltrane::qt
