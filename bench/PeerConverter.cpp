// The toolkit's own converter at its defaults: reads each file and writes it again.
//
//     peer_converter SUFFIX QUALITY FOLDER FILE…      quality -1: the writer's own

#include <QCoreApplication>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>

#include <cstdio>

namespace {

bool Convert(const QString& file, const QString& target, int quality)
{
    const QImage image = QImageReader(file).read();
    QImageWriter writer(target);
    writer.setQuality(quality);
    return writer.write(image);
}

} // namespace

int main(int count, char** arguments)
{
    const QCoreApplication application(count, arguments);
    const QStringList given = QCoreApplication::arguments();
    for (const QString& file : given.mid(4)) {
        const QString target
            = given[3] + QLatin1Char('/') + QFileInfo(file).completeBaseName() + QLatin1Char('.') + given[1];
        if (!Convert(file, target, given[2].toInt())) {
            std::fprintf(stderr, "peer_converter: not converted: %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
