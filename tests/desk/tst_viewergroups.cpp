#include "demo/desk/ViewerDesk.h"

#include <QtTest>

#include <set>

using namespace Desk;
using Simulation::Gender;

class tst_ViewerGroups : public QObject
{
    Q_OBJECT

private slots:
    void group_data();
    void group();
    void groupsStandApart();
    void crowd();
};

static const QRect Image(0, 0, 1600, 1200);

static bool overlap(const QVector<PlacedViewer> &some, const QVector<PlacedViewer> &others)
{
    for (const PlacedViewer &viewer : some) {
        for (const PlacedViewer &other : others) {
            if (viewer.area().intersects(other.area()))
                return true;
        }
    }
    return false;
}

void tst_ViewerGroups::group_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("people");
    QTest::addColumn<int>("children"); // below 18
    QTest::addColumn<bool>("settled");

    QTest::newRow("a family") << int(ViewerGroup::Family) << "A family" << 4 << 2 << true;
    QTest::newRow("a school class")
        << int(ViewerGroup::SchoolClass) << "A school class" << 22 << 21 << true;
    QTest::newRow("rush hour") << int(ViewerGroup::RushHour) << "Rush hour" << 16 << 2 << false;
}

void tst_ViewerGroups::group()
{
    QFETCH(int, group);
    QFETCH(QString, name);
    QFETCH(int, people);
    QFETCH(int, children);
    QFETCH(bool, settled);

    const auto kind = static_cast<ViewerGroup>(group);
    QVERIFY(viewerGroups().contains(kind));
    QCOMPARE(groupName(kind), name);
    const QVector<PlacedViewer> viewers = placeGroup(kind, {});
    QCOMPARE(viewers.size(), people);
    int young = 0;
    std::set<Gender> genders;
    for (const PlacedViewer &viewer : viewers) {
        QVERIFY(Image.contains(viewer.area()));
        QVERIFY(viewer.age.has_value());
        young += int(*viewer.age < 18);
        genders.insert(viewer.gender);
        QCOMPARE(viewer.settled, settled);
    }
    QCOMPARE(young, children);
    QCOMPARE(genders, (std::set<Gender>{Gender::Male, Gender::Female}));
    for (int i = 0; i < viewers.size(); ++i)
        QVERIFY2(!overlap({viewers.at(i)}, viewers.mid(i + 1)), qPrintable(QString::number(i)));
}

void tst_ViewerGroups::groupsStandApart()
{
    const QVector<PlacedViewer> first = placeGroup(ViewerGroup::Family, {});
    const QVector<PlacedViewer> second = placeGroup(ViewerGroup::Family, first);
    QVERIFY(!overlap(first, second));
    for (const PlacedViewer &viewer : second)
        QVERIFY(Image.contains(viewer.area()));
    // They keep together.
    const int x = second.at(0).position.x - first.at(0).position.x;
    const int y = second.at(0).position.y - first.at(0).position.y;
    for (int i = 0; i < first.size(); ++i) {
        QCOMPARE(second.at(i).position.x - first.at(i).position.x, x);
        QCOMPARE(second.at(i).position.y - first.at(i).position.y, y);
    }
}

/// Where there is no room left, all stand within the image all the same.
void tst_ViewerGroups::crowd()
{
    ViewerDesk desk;
    for (const ViewerGroup group : viewerGroups())
        desk.addGroup(group);
    QVERIFY(desk.isFull());
    for (const PlacedViewer &viewer : desk.viewers())
        QVERIFY(Image.contains(viewer.area()));
}

QTEST_GUILESS_MAIN(tst_ViewerGroups)
#include "tst_viewergroups.moc"
