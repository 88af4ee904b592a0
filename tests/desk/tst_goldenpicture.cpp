#include "tests/desk/GoldenPicture.h"

#include <QtTest>

using namespace KrTest;

/// Whether pictures that differ are told from those that do not.
class tst_GoldenPicture : public QObject
{
    Q_OBJECT

private slots:
    void differingShare_data();
    void differingShare();
};

void tst_GoldenPicture::differingShare_data()
{
    QTest::addColumn<QImage>("actual");
    QTest::addColumn<double>("share");

    const auto picture = [](const QColor &color) {
        QImage image(10, 10, QImage::Format_RGB32);
        image.fill(color);
        return image;
    };
    const QImage grey = picture(QColor(100, 100, 100));
    QImage onePixel = grey;
    onePixel.setPixelColor(3, 4, QColor(100, 133, 100));
    QTest::newRow("the same") << grey << 0.0;
    QTest::newRow("all a little lighter") << picture(QColor(132, 132, 132)) << 0.0;
    QTest::newRow("all a little darker") << picture(QColor(68, 68, 68)) << 0.0;
    QTest::newRow("one pixel in one colour") << onePixel << 0.01;
    QTest::newRow("all much darker in one colour") << picture(QColor(100, 100, 67)) << 1.0;
    QTest::newRow("another size") << grey.copy(0, 0, 10, 9) << 1.0;
    QTest::newRow("none") << QImage() << 1.0;
}

void tst_GoldenPicture::differingShare()
{
    QFETCH(QImage, actual);
    QFETCH(double, share);

    QImage expected(10, 10, QImage::Format_RGB32);
    expected.fill(QColor(100, 100, 100));
    QCOMPARE(KrTest::differingShare(actual, expected, 32), share);
}

QTEST_GUILESS_MAIN(tst_GoldenPicture)

#include "tst_goldenpicture.moc"
