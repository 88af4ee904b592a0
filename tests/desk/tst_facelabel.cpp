#include "demo/desk/FaceLabel.h"
#include "demo/desk/LabelPlaces.h"

#include <QtTest>

using namespace Analysis;
using namespace Desk;

namespace {

FaceMark woman(DecidedFace::Outcome outcome)
{
    FaceMark mark;
    mark.age = {QStringLiteral("34"), QStringLiteral("34"), Qt::yellow, true, true};
    mark.gender = {QStringLiteral("Female"), QStringLiteral("F"), Qt::red, true, false};
    mark.outcome = outcome;
    if (outcome != DecidedFace::NothingFits) {
        mark.sequence = 5;
        mark.content = QStringLiteral("Handbags");
    }
    mark.note = QStringLiteral("a reason");
    mark.shortNote = QStringLiteral("why");
    return mark;
}

LabelWish wish(const QRectF &face, bool isImportant = false)
{
    return {face, {{{120, 40}, {60, 40}, {20, 20}}}, isImportant};
}

const QRectF Area(0, 0, 800, 600);

bool areApart(const QVector<LabelPlace> &places)
{
    for (int i = 0; i < places.size(); ++i) {
        for (int j = 0; j < i; ++j) {
            if (places.at(i).rect.intersects(places.at(j).rect))
                return false;
        }
    }
    return true;
}

} // namespace

/// What labels say, and where they go.
class tst_FaceLabel : public QObject
{
    Q_OBJECT

private slots:
    void text_data();
    void text();
    void colors();
    void ink_data();
    void ink();
    void places_data();
    void places();
    void fewLabelsSayAll();
    void crowdSaysLess();
    void importantLabelSaysAll();
};

void tst_FaceLabel::text_data()
{
    QTest::addColumn<int>("outcome");
    QTest::addColumn<int>("detail");
    QTest::addColumn<QString>("readings");
    QTest::addColumn<QString>("result");

    const auto row
        = [](const char *name, int outcome, int detail, const char *readings, const char *result) {
              QTest::newRow(name) << outcome << detail << QString::fromLatin1(readings)
                                  << QString::fromLatin1(result);
          };
    row("decided", DecidedFace::Sent, FullLabel, "34*  Female", "#5 Handbags");
    row("decided, short", DecidedFace::Sent, ShortLabel, "34* F", "#5");
    row("decided, least", DecidedFace::Sent, LeastLabel, "34*", "#5");
    row("restricted", DecidedFace::Restricted, FullLabel, "34*  Female", "#5 a reason");
    row("restricted, short", DecidedFace::Restricted, ShortLabel, "34* F", "#5 why");
    row("restricted, least", DecidedFace::Restricted, LeastLabel, "34*", "");
    row("nothing fits", DecidedFace::NothingFits, FullLabel, "34*  Female", "a reason");
    row("nothing fits, short", DecidedFace::NothingFits, ShortLabel, "34* F", "why");
    row("nothing fits, least", DecidedFace::NothingFits, LeastLabel, "34*", "");
}

void tst_FaceLabel::text()
{
    QFETCH(int, outcome);
    QFETCH(int, detail);

    const LabelText text = labelText(
        woman(static_cast<DecidedFace::Outcome>(outcome)), static_cast<LabelDetail>(detail));
    QTEST(text.readingsText(), "readings");
    QTEST(text.outcome, "result");
}

void tst_FaceLabel::colors()
{
    const LabelText text = labelText(woman(DecidedFace::Sent), FullLabel);
    QCOMPARE(text.readings.at(0).color, QColor(Qt::yellow));
    QCOMPARE(text.readings.at(1).text, QStringLiteral("*"));
    QCOMPARE(text.readings.at(1).color, QColor("lime"));
    QCOMPARE(text.readings.last().color, QColor(Qt::red));
}

void tst_FaceLabel::ink_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QColor>("ink");
    QTest::addColumn<bool>("isLineLighter");

    QTest::newRow("black") << QColor(Qt::black) << QColor(Qt::white) << true;
    QTest::newRow("dark blue") << QColor(Qt::darkBlue) << QColor(Qt::white) << true;
    QTest::newRow("yellow") << QColor(255, 255, 120) << QColor(Qt::black) << false;
    QTest::newRow("white") << QColor(Qt::white) << QColor(Qt::black) << false;
}

void tst_FaceLabel::ink()
{
    QFETCH(QColor, color);
    QFETCH(bool, isLineLighter);

    QTEST(inkOn(color), "ink");
    QVERIFY(lineColor(color).lightnessF() > 0.6);
    QCOMPARE(lineColor(color) != color, isLineLighter);
}

void tst_FaceLabel::places_data()
{
    QTest::addColumn<QRectF>("face");
    QTest::addColumn<QRectF>("expected");

    QTest::newRow("below") << QRectF(300, 200, 100, 100) << QRectF(290, 303, 120, 40);
    QTest::newRow("above at the bottom") << QRectF(300, 480, 100, 100) << QRectF(290, 437, 120, 40);
    QTest::newRow("inside at the left") << QRectF(0, 200, 100, 100) << QRectF(0, 303, 120, 40);
    QTest::newRow("inside at the right") << QRectF(700, 200, 100, 100) << QRectF(680, 303, 120, 40);
    QTest::newRow("over a face that is as large as the area") << Area << QRectF(340, 560, 120, 40);
}

void tst_FaceLabel::places()
{
    QFETCH(QRectF, face);

    const QVector<LabelPlace> places = placeLabels({wish(face)}, Area);
    QCOMPARE(places.size(), 1);
    QCOMPARE(places.constFirst().detail, FullLabel);
    QTEST(places.constFirst().rect, "expected");
}

void tst_FaceLabel::fewLabelsSayAll()
{
    const QVector<LabelPlace> places = placeLabels(
        {wish({300, 200, 100, 100}), wish({300, 310, 100, 100}), wish({410, 200, 100, 100})}, Area);
    for (const LabelPlace &place : places)
        QCOMPARE(place.detail, FullLabel);
    QVERIFY(areApart(places));
}

void tst_FaceLabel::crowdSaysLess()
{
    QVector<LabelWish> wishes;
    for (int i = 0; i < 40; ++i)
        wishes.append(wish({i % 8 * 100.0 + 10, i / 8 * 120.0, 70, 70}));
    const QVector<LabelPlace> places = placeLabels(wishes, Area);
    QCOMPARE(places.size(), wishes.size());
    QVERIFY(areApart(places));
    for (const LabelPlace &place : places) {
        QCOMPARE(place.detail, ShortLabel); // all the same
        QVERIFY(Area.contains(place.rect));
    }
}

void tst_FaceLabel::importantLabelSaysAll()
{
    QVector<LabelWish> wishes{wish({10, 0, 70, 70}, true)};
    for (int i = 1; i < 80; ++i)
        wishes.append(wish({i % 10 * 80.0, i / 10 * 75.0, 70, 70}));
    const QVector<LabelPlace> places = placeLabels(wishes, Area);
    QCOMPARE(places.at(0).detail, FullLabel);
    QCOMPARE(places.at(40).detail, LeastLabel);
}

QTEST_GUILESS_MAIN(tst_FaceLabel)

#include "tst_facelabel.moc"
