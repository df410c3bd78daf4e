// The least that shows a window of our size with the same toolkit: what start-up is measured against. With an
// argument it shows that line of text, for which the toolkit has to find a font.

#include <QApplication>
#include <QLabel>
#include <QMainWindow>

int main(int count, char** arguments)
{
    QApplication application(count, arguments);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("bare"));
    window.resize(600, 553);
    if (count > 1)
        window.setCentralWidget(new QLabel(QString::fromLocal8Bit(arguments[1])));
    window.show();
    return QApplication::exec();
}
