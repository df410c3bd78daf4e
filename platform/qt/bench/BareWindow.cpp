// The least that shows a window of our size with the same toolkit: what start-up is measured against.

#include <QApplication>
#include <QMainWindow>

int main(int count, char** arguments)
{
    QApplication application(count, arguments);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("bare"));
    window.resize(600, 553);
    window.show();
    return QApplication::exec();
}
