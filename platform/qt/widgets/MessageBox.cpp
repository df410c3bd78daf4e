#include "platform/qt/widgets/MessageBox.h"

#include <QPushButton>

#include "platform/qt/Text.h"

namespace veltrane::qt {

namespace {

constexpr int kLongestRun = 40; // signs without a blank, before a line may break inside them
constexpr qsizetype kFirstLines = 10, kLastLines = 6; // a name can hold hundreds of line ends

QString Shown(const String& message)
{
    QStringList lines;
    for (const QString& line : ToQString(message).split(QLatin1Char('\n')))
        lines << WithBreaks(ToLine(line), kLongestRun);
    if (lines.size() > kFirstLines + kLastLines) {
        const QStringList last = lines.mid(lines.size() - kLastLines);
        lines = lines.mid(0, kFirstLines) << QStringLiteral("…") << last;
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

Box::Answer MessageBox::Run(const Box& box, QWidget* parent)
{
    QMessageBox shown(QMessageBox::Warning, QStringLiteral("Veltrane"), {}, QMessageBox::NoButton, parent);
    shown.setTextFormat(Qt::PlainText);
    shown.setText(Shown(box.message));
    QPushButton* const ok = shown.addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    const QPushButton* const stop
        = box.offersStop ? shown.addButton(QStringLiteral("Arrêter"), QMessageBox::RejectRole) : nullptr;
    shown.setDefaultButton(ok);
    shown.setEscapeButton(ok);
    shown.setWindowModality(Qt::ApplicationModal);
    open = &shown;
    shown.exec();
    return stop != nullptr && shown.clickedButton() == stop ? Box::Answer::Stop : Box::Answer::Ok;
}

void MessageBox::Close()
{
    if (open)
        open->accept();
}

} // namespace veltrane::qt
