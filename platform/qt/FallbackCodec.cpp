#include <QBuffer>
#include <QColorSpace>
#include <QGuiApplication>
#include <QImageReader>
#include <algorithm>
#include <climits>
#include <cstring>

#include "imaging/Codec.h"
#include "imaging/Fault.h"
#include "platform/qt/QtToolkit.h"

namespace veltrane {

namespace {

using imaging::Bitmap;
using imaging::Bytes;
using imaging::Fault;
using imaging::Limits;

void PassOver(QtMsgType, const QMessageLogContext&, const QString&) { }

// The plugins write what they dislike to the error stream; our caller is told by an exception.
class Quiet {
public:
    Quiet() : usual(qInstallMessageHandler(PassOver)) { }
    ~Quiet() { qInstallMessageHandler(usual); }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    QtMessageHandler usual;
};

// Plugins that draw text, such as SVG's, need the fonts, and those an application object; a program
// without a screen gets one that asks for none.
void ProvideApplication()
{
    static int count = 3;
    static char name[] = "Veltrane", option[] = "-platform", platform[] = "offscreen";
    static char* arguments[] = { name, option, platform, nullptr };
    // Never ended: at exit, Qt's own statics would be gone before it.
    if (QCoreApplication::instance() == nullptr)
        (void)new QGuiApplication(count, arguments);
}

// Notes when somebody asks for more than there is.
class Source final : public QBuffer {
public:
    using QBuffer::QBuffer;
    [[nodiscard]] bool RanOut() const noexcept { return ranOut; }

protected:
    qint64 readData(char* to, qint64 most) override
    {
        const qint64 got = QBuffer::readData(to, most);
        ranOut = ranOut || got < most;
        return got;
    }

private:
    bool ranOut = false;
};

// A reader over bytes that are not copied.
class Reader {
public:
    explicit Reader(Bytes file)
        : bytes(QByteArray::fromRawData(
            reinterpret_cast<const char*>(file.data()), static_cast<qsizetype>(file.size())))
        , buffer(&bytes)
    {
        ProvideApplication();
        buffer.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        reader.setDevice(&buffer);
        reader.setDecideFormatFromContent(true);
        reader.setAutoTransform(true);
        format = reader.format(); // which the reader no longer tells once it has read
    }
    QImageReader* operator->() noexcept { return &reader; }

    // Whether the file ended in the middle of the pixels. Asked of the plugin that reads just what it needs
    // and takes a file cut short for a picture whose rest is black.
    [[nodiscard]] bool CutShort() const { return format == "bmp" && buffer.RanOut(); }

private:
    const Quiet quiet;
    QByteArray bytes;
    Source buffer;
    QImageReader reader;
    QByteArray format;
};

bool Probe(Bytes head) noexcept
{
    try {
        return Reader(head)->canRead();
    } catch (...) {
        return false;
    }
}

// Asked before pixels are made, where the header states the size.
void CheckStatedSize(Reader& reader, const Limits& limits)
{
    if (!reader->canRead())
        throw Fault(Fault::FormatUnknown);
    QSize size = reader->size();
    if (size.isEmpty())
        return;
    if ((reader->transformation() & QImageIOHandler::TransformationRotate90) != 0)
        size.transpose();
    // The plugin's own picture stands beside ours until it has been copied.
    const std::int64_t working = std::int64_t { 4 } * size.width() * size.height();
    limits.Check(size.width(), size.height(), working);
}

QImage Read(Reader& reader, const Limits& limits)
{
    constexpr std::int64_t kMegabyte = 1024 * 1024;
    QImageReader::setAllocationLimit(
        static_cast<int>(std::clamp<std::int64_t>(limits.maxBytes / 2 / kMegabyte, 1, INT_MAX)));
    QImage image = reader->read();
    if (image.isNull() || reader.CutShort())
        throw Fault(Fault::Damaged);
    limits.Check(image.width(), image.height());
    if (image.colorSpace().isValid() && image.colorSpace() != QColorSpace(QColorSpace::SRgb))
        image.convertToColorSpace(QColorSpace(QColorSpace::SRgb));
    const bool opaque = !image.hasAlphaChannel();
    image.convertTo(opaque ? QImage::Format_RGBX8888 : QImage::Format_RGBA8888);
    if (image.isNull())
        throw Fault(Fault::NoMemory);
    return image;
}

Bitmap Copy(const QImage& image)
{
    Bitmap picture = Bitmap::Uninitialised(image.width(), image.height());
    std::uint8_t* const rows = picture.Writable();
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(
            rows + static_cast<std::size_t>(y) * picture.Stride(), image.constScanLine(y), picture.Stride());
    picture.Opaque(!image.hasAlphaChannel());
    return picture;
}

Bitmap Decode(Bytes file, const Limits& limits)
{
    Reader reader(file);
    CheckStatedSize(reader, limits);
    return Copy(Read(reader, limits));
}

constexpr imaging::Codec kFallback { "Qt", Probe, Decode, nullptr };

} // namespace

void RegisterQtFallback()
{
    imaging::RegisterFallback(&kFallback);
}

} // namespace veltrane
