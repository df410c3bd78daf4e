#include "platform/qt/Text.h"

#include <QTextBoundaryFinder>

namespace veltrane::qt {

namespace {

constexpr char16_t kControlPictures = 0x2400; // U+2400 stands for U+0000, and so on
constexpr char16_t kPictureOfDelete = 0x2421;
constexpr char16_t kZeroWidthSpace = 0x200B;

bool TurnsDirection(QChar sign)
{
    const char16_t code = sign.unicode();
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E)
        || (code >= 0x2066 && code <= 0x2069);
}

bool EndsLine(QChar sign)
{
    return sign.category() == QChar::Separator_Line || sign.category() == QChar::Separator_Paragraph;
}

QChar Harmless(QChar sign)
{
    const char16_t code = sign.unicode();
    if (code < 0x20)
        return QChar(static_cast<char16_t>(kControlPictures + code));
    if (code == 0x7F)
        return QChar(kPictureOfDelete);
    if (sign.category() == QChar::Other_Control || EndsLine(sign) || TurnsDirection(sign))
        return QChar(QChar::ReplacementCharacter);
    return sign;
}

} // namespace

QString ToQString(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QString ToQString(const String& text)
{
    return ToQString(text.Bytes());
}

QString ToLine(QString text)
{
    for (QChar& sign : text)
        sign = Harmless(sign);
    return text;
}

QString ToLine(const String& text)
{
    return ToLine(ToQString(text));
}

QString WithoutMnemonics(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString WithoutPlaceholders(QString text)
{
    return text.replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}

QString WithBreaks(const QString& text, int longest)
{
    QString broken;
    QTextBoundaryFinder signs(QTextBoundaryFinder::Grapheme, text);
    int run = 0;
    for (qsizetype from = 0, to = 0; (to = signs.toNextBoundary()) >= 0; from = to) {
        run = text[from].isSpace() ? 0 : run + 1;
        if (run > longest) {
            broken += QChar(kZeroWidthSpace);
            run = 1;
        }
        broken += QStringView(text).sliced(from, to - from);
    }
    return broken;
}

} // namespace veltrane::qt
