#include "demo/player/LinkedScreens.h"

#include <QStringList>
#include <QTest>

using namespace Player;
using PluginKrHvcP2::DetectionContent;
using PluginKrHvcP2::DetectionContents;

class tst_LinkedScreens : public QObject
{
    Q_OBJECT

private slots:
    void remaining_data();
    void remaining();
    void newContents();
};

namespace {

constexpr int Limit = 3000; // ms

QDateTime at(int milliseconds)
{
    return QDateTime({2026, 5, 17}, {12, 0}, Qt::UTC).addMSecs(milliseconds);
}

DetectionContent content(int number, const QList<int> &screens)
{
    DetectionContent content;
    content.sequenceNumber = number;
    content.identifiers = screens;
    return content;
}

/// #1 and #2 are followed by screen 7, #3 by 7 and 2, #5 by 4.
DetectionContents contents()
{
    return {content(1, {7}), content(2, {7}), content(3, {7, 2}), content(5, {4})};
}

/// For example "2: 0, 4: 1500".
QString describe(const QVector<LinkedScreens::Screen> &screens)
{
    QStringList texts;
    for (const LinkedScreens::Screen &screen : screens)
        texts << QStringLiteral("%1: %2").arg(screen.id).arg(screen.remaining);
    return texts.join(QStringLiteral(", "));
}

} // namespace

void tst_LinkedScreens::remaining_data()
{
    QTest::addColumn<QString>("starts"); // "SEQUENCE@MILLISECONDS", separated by blanks
    QTest::addColumn<int>("now");
    QTest::addColumn<QString>("expected");

    QTest::newRow("before any start") << "" << 0 << "2: 0, 4: 0, 7: 0";
    QTest::newRow("at once") << "1@0" << 0 << "2: 0, 4: 0, 7: 3000";
    QTest::newRow("while it runs down") << "5@0" << 1200 << "2: 0, 4: 1800, 7: 0";
    QTest::newRow("just before its end") << "5@0" << 2999 << "2: 0, 4: 1, 7: 0";
    QTest::newRow("at its end") << "5@0" << 3000 << "2: 0, 4: 0, 7: 0";
    QTest::newRow("a start that two screens follow") << "3@0" << 1000 << "2: 2000, 4: 0, 7: 2000";
    QTest::newRow("another sequence of the screen renews it")
        << "1@0 2@3000" << 3500 << "2: 0, 4: 0, 7: 2500";
    // The plug-in's clock was read a moment before this one, both times.
    QTest::newRow("a start that seems too early") << "1@10 1@3005" << 3010 << "2: 0, 4: 0, 7: 2995";
    QTest::newRow("a sequence that takes no part") << "4@0" << 0 << "2: 0, 4: 0, 7: 0";
    QTest::newRow("a sequence that there is not") << "2147483648@0" << 0 << "2: 0, 4: 0, 7: 0";
}

void tst_LinkedScreens::remaining()
{
    QFETCH(QString, starts);
    QFETCH(int, now);
    QFETCH(QString, expected);

    LinkedScreens screens;
    screens.setContents(contents(), Limit);
    const QStringList list = starts.isEmpty() ? QStringList() : starts.split(QLatin1Char(' '));
    for (const QString &start : list) {
        screens.start(start.section(QLatin1Char('@'), 0, 0).toLongLong(),
            at(start.section(QLatin1Char('@'), 1).toInt()));
    }
    QCOMPARE(describe(screens.at(at(now))), expected);
}

void tst_LinkedScreens::newContents()
{
    LinkedScreens screens;
    QCOMPARE(describe(screens.at(at(0))), QString());
    screens.setContents(contents(), Limit);
    screens.start(5, at(0));
    screens.setContents({content(1, {4, 9})}, 5000);
    QCOMPARE(describe(screens.at(at(1000))), QStringLiteral("4: 4000, 9: 0"));
}

QTEST_GUILESS_MAIN(tst_LinkedScreens)

#include "tst_linkedscreens.moc"
