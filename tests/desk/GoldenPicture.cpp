#include "tests/desk/GoldenPicture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFontDatabase>
#include <QSysInfo>
#include <QTest>

namespace KrTest {

namespace {

bool differ(QRgb a, QRgb b, int channel)
{
    return qAbs(qRed(a) - qRed(b)) > channel || qAbs(qGreen(a) - qGreen(b)) > channel
        || qAbs(qBlue(a) - qBlue(b)) > channel;
}

/// A few of its colours: less than any tolerance away from it, and a small file.
QImage coarse(QImage image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, (image.pixel(x, y) & 0xfff8f8f8) | 0x00040404);
    }
    return image;
}

/// @p actual in the dark, with the pixels that differ in white.
QImage differences(const QImage &actual, const QImage &expected, int channel)
{
    QImage result = actual;
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const QRgb pixel = actual.pixel(x, y);
            const bool isOther
                = !expected.valid(x, y) || differ(pixel, expected.pixel(x, y), channel);
            result.setPixel(x, y,
                isOther ? qRgb(255, 255, 255)
                        : qRgb(qRed(pixel) / 4, qGreen(pixel) / 4, qBlue(pixel) / 4));
        }
    }
    return result;
}

/// The folder that holds the pictures of a failure.
QString keepPictures(const QImage &actual, const QImage &expected, const QString &name, int channel)
{
    const QDir folder(QCoreApplication::applicationDirPath() + QLatin1String("/pictures"));
    folder.mkpath(QStringLiteral("."));
    actual.save(folder.filePath(name + QLatin1String(".actual.png")));
    expected.save(folder.filePath(name + QLatin1String(".expected.png")));
    differences(actual, expected, channel)
        .save(folder.filePath(name + QLatin1String(".differences.png")));
    return folder.path();
}

} // namespace

double differingShare(const QImage &actual, const QImage &expected, int channel)
{
    if (actual.size() != expected.size() || actual.isNull())
        return 1;
    qint64 count = 0;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x)
            count += differ(actual.pixel(x, y), expected.pixel(x, y), channel) ? 1 : 0;
    }
    return static_cast<double>(count) / (qint64{actual.width()} * actual.height());
}

std::optional<QFont> pictureFont(int pixels)
{
    const QString family = QStringLiteral("DejaVu Sans");
    if (QSysInfo::kernelType() != QLatin1String("linux")
        || !QFontDatabase().families().contains(family))
        return std::nullopt;
    QFont font(family);
    font.setPixelSize(pixels);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

void compareWithGoldenPicture(
    const QImage &actual, const QString &name, const PictureTolerance &tolerance)
{
    const QString folder = QFINDTESTDATA("golden");
    QVERIFY(!folder.isEmpty());
    const QString fileName = QStringLiteral("%1/%2.png").arg(folder, name);
    const QImage expected(fileName);
    const double share = differingShare(actual, expected, tolerance.channel);
    if (share <= tolerance.share)
        return;
    if (qEnvironmentVariableIsSet("KRHVC_RENEW_GOLDEN")) {
        QVERIFY(coarse(actual).save(fileName, nullptr, 0)); // as small as it can be
        QSKIP("The golden picture was renewed.");
    }
    const QString kept = keepPictures(actual, expected, name, tolerance.channel);
    QFAIL(qPrintable(QStringLiteral("%1: %2 % of the pixels differ, see %3")
                         .arg(name, QString::number(share * 100), kept)));
}

} // namespace KrTest
