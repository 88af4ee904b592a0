#include "demo/desk/MarkMotion.h"

#include <QtTest>

using namespace Desk;

namespace {

FaceMark face(int index, qreal x, qreal size = 200)
{
    FaceMark mark;
    mark.index = index;
    mark.rank = index + 1;
    mark.place = MarkPlace{{x, 600}, size};
    return mark;
}

FaceMark withoutPlace(int index)
{
    FaceMark mark = face(index, 0);
    mark.place.reset();
    return mark;
}

/// "0@400*0.5 -@100*1" for the targets, places and opacities.
QString described(const QVector<MovingMark> &marks)
{
    QStringList words;
    for (const MovingMark &moving : marks) {
        words << QStringLiteral("%1@%2*%3")
                     .arg(moving.target < 0 ? QStringLiteral("-") : QString::number(moving.target))
                     .arg(moving.mark.place ? moving.mark.place->center.x() : -1)
                     .arg(moving.opacity);
    }
    return words.join(QLatin1Char(' '));
}

} // namespace

Q_DECLARE_METATYPE(FaceMark)

class tst_MarkMotion : public QObject
{
    Q_OBJECT

private slots:
    void matched_data();
    void matched();
    void progress_data();
    void progress();
    void whatMoves();
    void mostProminentLast();
};

void tst_MarkMotion::matched_data()
{
    QTest::addColumn<QVector<FaceMark>>("from");
    QTest::addColumn<QVector<FaceMark>>("to");
    QTest::addColumn<QVector<int>>("expected");

    using Faces = QVector<FaceMark>;
    using Origins = QVector<int>;
    QTest::newRow("first frame") << Faces{} << Faces{face(0, 400)} << Origins{-1};
    QTest::newRow("all gone") << Faces{face(0, 400)} << Faces{} << Origins{};
    QTest::newRow("stays") << Faces{face(0, 400)} << Faces{face(0, 420)} << Origins{0};
    QTest::newRow("too far") << Faces{face(0, 100)} << Faces{face(0, 900)} << Origins{-1};
    QTest::newRow("another number, its own size away")
        << Faces{face(0, 400)} << Faces{face(1, 600)} << Origins{0};
    QTest::newRow("another number, further")
        << Faces{face(0, 400)} << Faces{face(1, 601)} << Origins{-1};
    QTest::newRow("its number, further")
        << Faces{face(0, 400)} << Faces{face(0, 800)} << Origins{0};
    QTest::newRow("the nearer one")
        << Faces{face(0, 400), face(1, 500)} << Faces{face(2, 490), face(3, 410)} << Origins{1, 0};
    QTest::newRow("one at a time")
        << Faces{face(0, 400)} << Faces{face(1, 410), face(2, 390)} << Origins{0, -1};
    QTest::newRow("the first one has left: numbers move up")
        << Faces{face(0, 200), face(1, 800)} << Faces{face(0, 810)} << Origins{1};
    QTest::newRow("tiny faces") << Faces{face(0, 400, 4)} << Faces{face(1, 450, 4)} << Origins{0};
    QTest::newRow("without a place") << Faces{withoutPlace(0)} << Faces{face(0, 0)} << Origins{-1};
}

void tst_MarkMotion::matched()
{
    QFETCH(QVector<FaceMark>, from);
    QFETCH(QVector<FaceMark>, to);

    QTEST(MarkMotion::matched(from, to), "expected");
}

void tst_MarkMotion::progress_data()
{
    QTest::addColumn<qreal>("progress");
    QTest::addColumn<QString>("expected");

    // The first one leaves, the second one moves, another one comes.
    QTest::newRow("start") << 0.0 << "-@100*1 1@1400*0 0@600*1";
    QTest::newRow("middle") << 0.5 << "-@100*0.5 1@1400*0.5 0@650*1";
    QTest::newRow("end") << 1.0 << "1@1400*1 0@700*1";
    QTest::newRow("beyond") << 1.5 << "1@1400*1 0@700*1";
}

void tst_MarkMotion::progress()
{
    QFETCH(qreal, progress);

    const MarkMotion motion({face(0, 100), face(1, 600)}, {face(0, 700), face(1, 1400)});
    QTEST(described(motion.at(progress)), "expected");
}

void tst_MarkMotion::whatMoves()
{
    FaceMark from = face(0, 400, 100);
    from.gaze = MarkGaze{{0, 0.5}, true};
    from.roll = 170;
    from.sequence = 1;
    FaceMark to = face(0, 500, 200);
    to.gaze = MarkGaze{{0.5, 0}, false};
    to.roll = -170;
    to.sequence = 2;
    const MarkMotion motion({from}, {to});

    const FaceMark middle = motion.at(0.5).value(0).mark;
    QCOMPARE(middle.place->size, 150.0);
    QCOMPARE(middle.gaze->tip, QPointF(0.25, 0.25));
    QCOMPARE(middle.roll, 180.0); // the shorter way round
    QCOMPARE(middle.sequence, 2); // what it says is of the newer frame
    QCOMPARE(motion.at(0).value(0).mark.sequence, 2);
    QCOMPARE(motion.at(1).value(0).mark.roll, -170.0);

    to.gaze.reset();
    QVERIFY(!MarkMotion({from}, {to}).at(0.5).value(0).mark.gaze);
}

void tst_MarkMotion::mostProminentLast()
{
    FaceMark first = face(0, 400);
    first.rank = 2;
    FaceMark second = face(1, 800);
    second.rank = 3;
    FaceMark third = face(2, 1200);
    third.rank = 1;
    const MarkMotion motion({}, {first, second, third});
    QCOMPARE(described(motion.at(1)), QStringLiteral("1@800*1 0@400*1 2@1200*1"));
}

QTEST_GUILESS_MAIN(tst_MarkMotion)

#include "tst_markmotion.moc"
