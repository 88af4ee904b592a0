#include "demo/player/EventLog.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Player;

class tst_EventLog : public QObject
{
    Q_OBJECT

private slots:
    void line_data();
    void line();
    void columns();
    void oldEventsAreDropped();
    void longDetails();
    void toolTips_data();
    void toolTips();
};

namespace {

PlayerEvent makeEvent(PlayerEvent::Kind kind, const QString &signal, const QString &details)
{
    PlayerEvent event;
    event.kind = kind;
    event.signal = signal;
    event.details = details;
    event.time = QTime(12, 0, 1, 250);
    return event;
}

} // namespace

void tst_EventLog::line_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QString>("details");
    QTest::addColumn<QString>("line");

    QTest::newRow("a switch leaves the signal's name out")
        << int(PlayerEvent::Switch) << "contentStarted"
        << "#3  Women 20-39"
        << "12:00:01.250  switch  #3  Women 20-39";
    QTest::newRow("another signal is named")
        << int(PlayerEvent::Signal) << "contnetStopped"
        << "#3  Women 20-39"
        << "12:00:01.250  signal  contnetStopped  #3  Women 20-39";
    QTest::newRow("a status change") << int(PlayerEvent::Status) << ""
                                     << "102  Started"
                                     << "12:00:01.250  status  102  Started";
    QTest::newRow("what the player did") << int(PlayerEvent::Player) << ""
                                         << "Hello"
                                         << "12:00:01.250  player  Hello";
    QTest::newRow("a change of the stage") << int(PlayerEvent::Edit) << ""
                                           << "content #9 added"
                                           << "12:00:01.250  edit    content #9 added";
    QTest::newRow("short kinds are filled up") << int(PlayerEvent::Log) << "throwLogMessage"
                                               << "Error: x"
                                               << "12:00:01.250  log     Error: x";
    QTest::newRow("line breaks and control characters become blanks")
        << int(PlayerEvent::Log) << "throwLogMessage" << QStringLiteral("a\r\nb\tc\u2028d\x1b[1m")
        << "12:00:01.250  log     a  b c d [1m";
}

void tst_EventLog::line()
{
    QFETCH(int, kind);
    QFETCH(QString, signal);
    QFETCH(QString, details);
    QFETCH(QString, line);

    QCOMPARE(makeEvent(static_cast<PlayerEvent::Kind>(kind), signal, details).line(), line);
}

void tst_EventLog::columns()
{
    EventLog log;
    const QAbstractItemModelTester tester(&log);
    QSignalSpy spy(&log, &EventLog::appended);
    QVERIFY(spy.isValid());

    log.append(
        makeEvent(PlayerEvent::Switch, QStringLiteral("contentStarted"), QStringLiteral("#1\nA")));
    log.append(makeEvent(PlayerEvent::Status, {}, QStringLiteral("100  Stopped")));

    QCOMPARE(spy.count(), 2);
    QCOMPARE(log.rowCount(), 2);
    const auto text = [&log](int row, int column) { return log.index(row, column).data(); };
    QCOMPARE(text(0, EventLog::TimeColumn), QVariant(QStringLiteral("12:00:01.250")));
    QCOMPARE(text(0, EventLog::NameColumn), QVariant(QStringLiteral("contentStarted")));
    QCOMPARE(text(0, EventLog::DetailsColumn), QVariant(QStringLiteral("#1 A")));
    QCOMPARE(log.index(0, EventLog::DetailsColumn).data(Qt::ToolTipRole),
        QVariant(QStringLiteral("#1\nA")));
    QCOMPARE(text(1, EventLog::NameColumn), QVariant(QStringLiteral("status")));
    QCOMPARE(text(1, EventLog::DetailsColumn), QVariant(QStringLiteral("100  Stopped")));
    QCOMPARE(log.headerData(0, Qt::Horizontal).toString(), QStringLiteral("Time"));
    QCOMPARE(log.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Event"));
    QCOMPARE(log.headerData(2, Qt::Horizontal).toString(), QStringLiteral("Details"));
}

void tst_EventLog::oldEventsAreDropped()
{
    EventLog log;
    for (int i = 0; i < EventLog::Limit + 5; ++i)
        log.append(makeEvent(PlayerEvent::Player, {}, QString::number(i)));
    QCOMPARE(log.rowCount(), int(EventLog::Limit));
    QCOMPARE(log.at(0).details, QStringLiteral("5"));
    QCOMPARE(log.at(EventLog::Limit - 1).details, QString::number(EventLog::Limit + 4));
}

void tst_EventLog::longDetails()
{
    EventLog log;
    QString told;
    connect(&log, &EventLog::appended, &log,
        [&told](const PlayerEvent &event) { told = event.details; });
    const QString most(4000, QLatin1Char('x'));
    log.append(makeEvent(PlayerEvent::Log, {}, most));
    QCOMPARE(log.at(0).details, most);

    // The cut does not part the two halves of a character.
    const QString face = QString::fromUtf8("\xf0\x9f\x98\x80");
    log.append(makeEvent(PlayerEvent::Log, {}, most.left(3998) + face.repeated(500000)));
    const QString shown = most.left(3998) + QChar(0x2026);
    QCOMPARE(log.at(1).details, shown);
    QCOMPARE(told, shown);
}

void tst_EventLog::toolTips_data()
{
    QTest::addColumn<QString>("details");
    QTest::addColumn<QString>("toolTip");

    QTest::newRow("plain text") << "#1\n2 > 1 & 1 < 2"
                                << "#1\n2 > 1 & 1 < 2";
    QTest::newRow("what would be laid out as a table")
        << "#1 <table><tr><td>x"
        << "<p>#1 &lt;table&gt;&lt;tr&gt;&lt;td&gt;x</p>";
}

void tst_EventLog::toolTips()
{
    QFETCH(QString, details);
    QFETCH(QString, toolTip);

    EventLog log;
    log.append(makeEvent(PlayerEvent::Switch, {}, details));
    QCOMPARE(log.index(0, EventLog::DetailsColumn).data(Qt::ToolTipRole).toString(), toolTip);
}

QTEST_GUILESS_MAIN(tst_EventLog)

#include "tst_eventlog.moc"
