#include "log/LogFormat.h"

#include <QLocale>
#include <QtTest>

using namespace PluginKrHvcP2;

namespace {

QDateTime time()
{
    return {QDate(2018, 2, 1), QTime(9, 30, 0, 999)};
}

const QString Footer = QStringLiteral("===================================== <<");

} // namespace

class tst_LogFormat : public QObject
{
    Q_OBJECT

private slots:
    void fileNames_data();
    void fileNames();
    void record_data();
    void record();
    void namesAndStampsAreTheSameInEveryLocale();
    void expired_data();
    void expired();
    void expiredKeepsTheOrder();
};

void tst_LogFormat::fileNames_data()
{
    QTest::addColumn<QString>("baseName");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("logFile");
    QTest::addColumn<QString>("lockFile");

    QTest::newRow("the defaults") << QStringLiteral("plugin") << QDate(2018, 2, 1)
                                  << QStringLiteral("txt") << QStringLiteral("plugin_20180201.txt")
                                  << QStringLiteral("plugin.lock");
    QTest::newRow("the configured plug-in")
        << QStringLiteral("KrHvcP2Log") << QDate(2018, 2, 1) << QStringLiteral("txt")
        << QStringLiteral("KrHvcP2Log_20180201.txt") << QStringLiteral("KrHvcP2Log.lock");
    QTest::newRow("the last day of a year, another extension")
        << QStringLiteral("a b") << QDate(1999, 12, 31) << QStringLiteral("log")
        << QStringLiteral("a b_19991231.log") << QStringLiteral("a b.lock");
    QTest::newRow("a base name with a dot")
        << QStringLiteral("a.b") << QDate(2020, 2, 29) << QStringLiteral("txt")
        << QStringLiteral("a.b_20200229.txt") << QStringLiteral("a.b.lock");
    // One placeholder is filled after the other.
    QTest::newRow("a base name with a marker takes the date")
        << QStringLiteral("%1x") << QDate(2018, 2, 1) << QStringLiteral("txt")
        << QStringLiteral("20180201x_txt.%3") << QStringLiteral("%1x.lock");
}

void tst_LogFormat::fileNames()
{
    QFETCH(QString, baseName);
    QFETCH(QDate, date);
    QFETCH(QString, extension);
    QFETCH(QString, logFile);
    QFETCH(QString, lockFile);
    QCOMPARE(LogFormat::logFileName(baseName, date, extension), logFile);
    QCOMPARE(LogFormat::lockFileName(baseName), lockFile);
}

void tst_LogFormat::record_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("levelName");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("expected");

    const auto line
        = [](const char *name, const char *level, const QString &message, const char *expected) {
              QTest::newRow(name) << 0 << QString::fromLatin1(level) << message
                                  << QString::fromUtf8(expected);
          };
    const auto block = [](const char *name, const QString &message, const QString &middle) {
        const QString header = QStringLiteral(">> 2018-02-01 09:30:00 [Notice]=========");
        QTest::newRow(name) << 1 << QStringLiteral("Notice") << message
                            << QString(header + QLatin1Char('\n') + middle);
    };
    const auto framed = [&](const char *name, const QString &message, const QString &text) {
        block(name, message, text + QLatin1Char('\n') + Footer + QStringLiteral("\n\n"));
    };

    line(
        "one line", "Notice", QStringLiteral("Started."), "2018-02-01 09:30:00 Notice: Started.\n");
    line("one line without a level name", "", QStringLiteral("Started."),
        "2018-02-01 09:30:00 : Started.\n");
    line("one line without a message", "Error", QString(), "2018-02-01 09:30:00 Error: \n");
    line("one line is not trimmed", "Error", QStringLiteral("\n  a\n b \n\n"),
        "2018-02-01 09:30:00 Error: \n  a\n b \n\n\n");
    line("one line with markers", "Error", QStringLiteral("%1 %2 %3 %L1 %99 100%"),
        "2018-02-01 09:30:00 Error: %1 %2 %3 %L1 %99 100%\n");
    line("a marker in the level name takes the message", "%1", QStringLiteral("a"),
        "2018-02-01 09:30:00 a: %3\n");

    framed("a block", QStringLiteral("Started."), QStringLiteral("Started."));
    framed("a block is trimmed", QStringLiteral("\n \t a\n b \r\n\n"), QStringLiteral("a\n b"));
    framed("a block of blanks", QStringLiteral(" \n "), QString());
    framed("a block of nothing", QString(), QString());
    framed("a block of several lines", QStringLiteral("a\n\nb"), QStringLiteral("a\n\nb"));
    framed("a block beyond ASCII", QStringLiteral("\u5e74\u9f62 \u00e4"),
        QStringLiteral("\u5e74\u9f62 \u00e4"));
    framed("a percent sign", QStringLiteral("100% sure"), QStringLiteral("100% sure"));
    framed("a high marker stays", QStringLiteral("a %4 %99"), QStringLiteral("a %4 %99"));
    // The record's third placeholder is filled last, and any lower one in the message before it.
    block("a first marker takes the footer", QStringLiteral("a %1 b"),
        QStringLiteral("a ") + Footer + QStringLiteral(" b\n%3\n\n"));
    block("a second marker takes the footer", QStringLiteral("a %2 b"),
        QStringLiteral("a ") + Footer + QStringLiteral(" b\n%3\n\n"));
    block("a third marker takes the footer too", QStringLiteral("a %3 b"),
        QStringLiteral("a ") + Footer + QStringLiteral(" b\n") + Footer + QStringLiteral("\n\n"));
    block("of two markers the lower takes the footer", QStringLiteral("%2%1"),
        QStringLiteral("%2") + Footer + QStringLiteral("\n%3\n\n"));

    QTest::newRow("a block without a level name")
        << 1 << QString() << QStringLiteral("a")
        << QString(QStringLiteral(">> 2018-02-01 09:30:00 []===============\na\n") + Footer
               + QStringLiteral("\n\n"));
    QTest::newRow("a longer header is not cut")
        << 1 << QStringLiteral("A level of many, many words") << QStringLiteral("a")
        << QString(QStringLiteral(">> 2018-02-01 09:30:00 [A level of many, many words]\na\n")
               + Footer + QStringLiteral("\n\n"));
    QTest::newRow("a header of exactly the width")
        << 1 << QStringLiteral("Fifteen letters") << QStringLiteral("a")
        << QString(QStringLiteral(">> 2018-02-01 09:30:00 [Fifteen letters]\na\n") + Footer
               + QStringLiteral("\n\n"));
    for (const int style : {2, -1}) {
        QTest::addRow("style %d is a block", style)
            << style << QStringLiteral("Notice") << QStringLiteral(" a ")
            << QString(QStringLiteral(">> 2018-02-01 09:30:00 [Notice]=========\na\n") + Footer
                   + QStringLiteral("\n\n"));
    }
}

void tst_LogFormat::record()
{
    QFETCH(int, style);
    QFETCH(QString, levelName);
    QFETCH(QString, message);
    QFETCH(QString, expected);
    QCOMPARE(LogFormat::record(style, time(), levelName, message), expected);
}

void tst_LogFormat::namesAndStampsAreTheSameInEveryLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    const QString name = LogFormat::logFileName(
        QStringLiteral("plugin"), QDate(2018, 2, 1), QStringLiteral("txt"));
    const QString record
        = LogFormat::record(0, time(), QStringLiteral("Notice"), QStringLiteral("a"));
    const QStringList expired = LogFormat::expiredFiles(
        {QStringLiteral("x_20180131.txt")}, QStringLiteral("txt"), QDate(2018, 2, 1));
    QLocale::setDefault(before);
    QCOMPARE(name, QStringLiteral("plugin_20180201.txt"));
    QCOMPARE(record, QStringLiteral("2018-02-01 09:30:00 Notice: a\n"));
    QCOMPARE(expired, QStringList{QStringLiteral("x_20180131.txt")});
}

void tst_LogFormat::expired_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<bool>("expected");

    const auto row
        = [](const char *name, const char *fileName, bool expected, const char *extension = "txt") {
              QTest::newRow(name) << QString::fromUtf8(fileName) << QString::fromLatin1(extension)
                                  << expected;
          };

    // The oldest day that is kept is 2018-02-01.
    row("a day too old", "plugin_20180131.txt", true);
    row("exactly the oldest day", "plugin_20180201.txt", false);
    row("a day younger", "plugin_20180202.txt", false);
    row("years too old", "plugin_19990101.txt", true);
    row("a later year", "plugin_20190101.txt", false);
    row("the files of others", "other_20170101.txt", true);
    row("no stem", "20170101.txt", true);
    row("a stem without a low line", "abc20170101.txt", true);
    row("a stem that ends with digits", "1120170101.txt", true);
    row("a stem beyond ASCII", "\xE6\x97\xA5_20170101.txt", true);
    row("a stem with dots", "a.b.20170101.txt", true);
    row("a stem with a line feed", "a\n20170101.txt", true);
    row("no date", "notes.txt", false);
    row("a date of seven digits", "x_2017011.txt", false);
    row("a date of nine digits", "x_020170101.txt", true); // the last eight make one
    row("a short name", "a.txt", false);
    row("nothing but the extension", ".txt", false);
    row("no such day", "x_20170229.txt", false);
    row("a leap day", "x_20160229.txt", true);
    row("no such month", "x_20171301.txt", false);
    row("month 0", "x_20170001.txt", false);
    row("day 0", "x_20170100.txt", false);
    row("nines", "x_99999999.txt", false);
    row("zeros", "x_00000000.txt", false);
    row("signs in the date", "x_2017+1+1.txt", false);
    row("blanks in the date", "x_2017 1 1.txt", false);
    row("a date with hyphens", "x_2017-01-01.txt", false);
    row("letters behind the date", "x_20170101a.txt", false);
    row("digits of another script",
        "x_\xD9\xA2\xD9\xA0\xD9\xA1\xD9\xA7\xD9\xA0\xD9\xA1\xD9\xA0\xD9\xA1.txt", false);
    row("another extension", "x_20170101.log", true, "log");
    row("a longer extension", "x_20170101.text", true, "text");
    row("an extension with a dot", "x_20170101.log.txt", true, "log.txt");
}

void tst_LogFormat::expired()
{
    QFETCH(QString, fileName);
    QFETCH(QString, extension);
    QFETCH(bool, expected);
    const QStringList files = LogFormat::expiredFiles({fileName}, extension, QDate(2018, 2, 1));
    QCOMPARE(files, expected ? QStringList{fileName} : QStringList());
}

void tst_LogFormat::expiredKeepsTheOrder()
{
    const QStringList names{QStringLiteral("c_20170103.txt"), QStringLiteral("notes.txt"),
        QStringLiteral("b_20180301.txt"), QStringLiteral("a_20170101.txt")};
    const QStringList expected{QStringLiteral("c_20170103.txt"), QStringLiteral("a_20170101.txt")};
    QCOMPARE(LogFormat::expiredFiles(names, QStringLiteral("txt"), QDate(2018, 2, 1)), expected);
    QCOMPARE(LogFormat::expiredFiles({}, QStringLiteral("txt"), QDate(2018, 2, 1)), QStringList());
}

QTEST_GUILESS_MAIN(tst_LogFormat)

#include "tst_logformat.moc"
