#include "detection/FaceResult.h"

#include <QtTest>

#include <limits>

using namespace PluginKrHvcP2;

namespace {

constexpr int Min = std::numeric_limits<int>::min();
constexpr int Max = std::numeric_limits<int>::max();

FaceResultItem age(int years, int confidence, bool marked)
{
    return {FaceResultItem::Age, years, confidence, marked};
}

} // namespace

class tst_FaceResult : public QObject
{
    Q_OBJECT

private slots:
    void kinds();
    void itemValidity_data();
    void itemValidity();
    void empty();
    void replacing();
    void invalidItems();
    void lookupIsACopy();
    void reset();
    void size_data();
    void size();
    void storedDirection_data();
    void storedDirection();
    void direction_data();
    void direction();
};

void tst_FaceResult::kinds()
{
    QCOMPARE(int(FaceResultItem::None), 0);
    QCOMPARE(int(FaceResultItem::Detection), 1);
    QCOMPARE(int(FaceResultItem::Direction), 2);
    QCOMPARE(int(FaceResultItem::Age), 3);
    QCOMPARE(int(FaceResultItem::Gender), 4);
}

void tst_FaceResult::itemValidity_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("expected");

    QTest::newRow("kind and value") << int(FaceResultItem::Age) << QVariant(34) << true;
    QTest::newRow("zero is a value") << int(FaceResultItem::Age) << QVariant(0) << true;
    QTest::newRow("no kind") << int(FaceResultItem::None) << QVariant(34) << false;
    QTest::newRow("no value") << int(FaceResultItem::Age) << QVariant() << false;
    QTest::newRow("a null value") << int(FaceResultItem::Age) << QVariant(QVariant::Int) << false;
    QTest::newRow("neither") << int(FaceResultItem::None) << QVariant() << false;
}

void tst_FaceResult::itemValidity()
{
    QFETCH(int, kind);
    QFETCH(QVariant, value);
    QFETCH(bool, expected);
    const FaceResultItem item{kind, value, 0, false};
    QCOMPARE(item.isValid(), expected);

    FaceResult face;
    face.setItem(item);
    QCOMPARE(face.hasItems(), expected);
}

void tst_FaceResult::empty()
{
    const FaceResult face;
    QCOMPARE(face.index, -1);
    QVERIFY(face.time.isNull());
    QVERIFY(!face.hasItems());
    QCOMPARE(face.size(), 0);
    QCOMPARE(face.directionValue(), 2147483647);

    const FaceResultItem item = face.item(FaceResultItem::Age);
    QCOMPARE(item.kind, 0);
    QVERIFY(!item.value.isValid());
    QCOMPARE(item.confidence, 0);
    QCOMPARE(item.marked, false);
}

void tst_FaceResult::replacing()
{
    FaceResult face;
    face.setItem(age(34, 500, true));
    face.setItem({FaceResultItem::Gender, 2, 900, false});
    face.setItem(age(35, 0, false));

    QCOMPARE(face.item(FaceResultItem::Age).value, QVariant(35));
    QCOMPARE(face.item(FaceResultItem::Age).confidence, 0);
    QCOMPARE(face.item(FaceResultItem::Age).marked, false);
    QCOMPARE(face.item(FaceResultItem::Gender).value, QVariant(2));
    QCOMPARE(face.item(FaceResultItem::Gender).confidence, 900);
}

void tst_FaceResult::invalidItems()
{
    FaceResult face;
    face.setItem(age(34, 500, true));
    face.setItem({FaceResultItem::Age, QVariant(), 1, false});
    QCOMPARE(face.item(FaceResultItem::Age).value, QVariant(34));
    QCOMPARE(face.item(FaceResultItem::Age).confidence, 500);
    QCOMPARE(face.item(FaceResultItem::None).kind, 0);
}

void tst_FaceResult::lookupIsACopy()
{
    FaceResult face;
    face.setItem(age(34, 500, true));
    FaceResultItem item = face.item(FaceResultItem::Age);
    item.value = 99;
    QCOMPARE(face.item(FaceResultItem::Age).value, QVariant(34));
}

void tst_FaceResult::reset()
{
    FaceResult face;
    face.index = 3;
    face.time = QDateTime(QDate(2018, 2, 1), QTime(9, 30));
    face.setItem(age(34, 500, true));
    face.reset();
    QCOMPARE(face.index, -1);
    QVERIFY(face.time.isNull());
    QVERIFY(!face.hasItems());
    QCOMPARE(face.item(FaceResultItem::Age).kind, 0);
}

void tst_FaceResult::size_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("expected");

    const QString key = QStringLiteral("Size");
    QTest::newRow("a size") << QVariant(QVariantMap{{key, 120}}) << 120;
    QTest::newRow("a negative size") << QVariant(QVariantMap{{key, -1}}) << -1;
    QTest::newRow("no such entry") << QVariant(QVariantMap{{QStringLiteral("X"), 3}}) << 0;
    QTest::newRow("an entry that is no number")
        << QVariant(QVariantMap{{key, QStringLiteral("big")}}) << 0;
    QTest::newRow("no map") << QVariant(7) << 0;
}

void tst_FaceResult::size()
{
    QFETCH(QVariant, value);
    QFETCH(int, expected);
    FaceResult face;
    face.setItem({FaceResultItem::Detection, value, 0, false});
    QCOMPARE(face.size(), expected);
}

void tst_FaceResult::storedDirection_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("expected");

    const QString key = QStringLiteral("DirectionValue");
    QTest::newRow("a direction") << QVariant(QVariantMap{{key, 8}}) << 8;
    QTest::newRow("straight ahead") << QVariant(QVariantMap{{key, 0}}) << 0;
    QTest::newRow("no such entry") << QVariant(QVariantMap{{QStringLiteral("LR"), 3}}) << Max;
    QTest::newRow("no map") << QVariant(7) << Max;
}

void tst_FaceResult::storedDirection()
{
    QFETCH(QVariant, value);
    QFETCH(int, expected);
    FaceResult face;
    face.setItem({FaceResultItem::Direction, value, 0, false});
    QCOMPARE(face.directionValue(), expected);
}

void tst_FaceResult::direction_data()
{
    QTest::addColumn<int>("leftRight");
    QTest::addColumn<int>("upDown");
    QTest::addColumn<int>("expected");

    QTest::newRow("straight ahead") << 0 << 0 << 0;
    QTest::newRow("right and down") << 5 << -3 << 8;
    QTest::newRow("left and up") << -5 << 3 << 8;
    QTest::newRow("left and down") << -5 << -3 << 8;
    QTest::newRow("the largest sum that fits") << Max << 0 << Max;
    QTest::newRow("just beyond is capped") << Max << 1 << Max;
    QTest::newRow("the lowest number is capped") << Min << 0 << Max;
    QTest::newRow("twice the lowest number is capped") << Min << Min << Max;
    QTest::newRow("twice the largest number is capped") << Max << Max << Max;
    QTest::newRow("half and half fits") << 1073741823 << -1073741823 << 2147483646;
}

void tst_FaceResult::direction()
{
    QFETCH(int, leftRight);
    QFETCH(int, upDown);
    QFETCH(int, expected);
    QCOMPARE(directionValue(leftRight, upDown), expected);
}

QTEST_GUILESS_MAIN(tst_FaceResult)

#include "tst_faceresult.moc"
