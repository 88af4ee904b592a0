#include "tools/analysis/LogMessage.h"

#include <QTest>

using namespace Analysis;

Q_DECLARE_METATYPE(Analysis::Entry::Kind)

class tst_LogMessage : public QObject
{
    Q_OBJECT

private slots:
    void kinds_data();
    void kinds();
};

void tst_LogMessage::kinds_data()
{
    QTest::addColumn<QString>("level");
    QTest::addColumn<QString>("message");
    QTest::addColumn<Entry::Kind>("kind");
    QTest::addColumn<QVector<int>>("numbers"); // of Restricted: sequence and limit
    QTest::addColumn<QString>("text");

    const auto add = [](const char *name, const char *level, const char *message, Entry::Kind kind,
                         const QVector<int> &numbers = {}, const char *text = "") {
        QTest::newRow(name) << QString::fromUtf8(level) << QString::fromUtf8(message) << kind
                            << numbers << QString::fromUtf8(text);
    };
    const char *const determined = "The determined sequence number: #5 #16";
    const char *const restricted = "#5 is not sent now because it is within the limited "
                                   "min-time(5000 msec.).";
    add("nobody", "Notice", "Face result count:0", Entry::Frame, {}, "Face result count:0");
    add("a frame that failed", "Error", "Face result count:0\nFailed to x", Entry::Frame, {},
        "Face result count:0\nFailed to x");
    add("a frame without a row", "Information", "", Entry::Frame);
    add("a failure alone", "Error", "Failed to open COM port.", Entry::Frame, {},
        "Failed to open COM port.");
    add("a piece of a frame", "Information", "Age\nAge:7", Entry::Frame, {}, "Age\tAge:7");
    add("a word of a frame", "Information", "Direction", Entry::Frame, {}, "Direction");
    add("a frame in a translated log", "情報", "Age\nAge:7", Entry::Frame, {}, "Age\tAge:7");
    add("a frame behind another line", "情報", "x\nFace Direction\nLR:1", Entry::Frame, {},
        "x\nFace Direction\tLR:1");

    add("two sequences", "Information", determined, Entry::Determined, {5, 16});
    add("no sequence", "Information", "The determined sequence number:", Entry::Determined);
    add("a translated level", "情報", determined, Entry::Determined, {5, 16});
    add("translated sequences", "情報", "決定: #5 #16", Entry::Determined, {5, 16});
    add("text behind the numbers", "Notice", "x #5 a", Entry::Unknown, {},
        "a message that is not known: \"x #5 a\"");
    add("a sequence that is no number", "Notice", "The determined sequence number: #5 #x",
        Entry::Unknown, {},
        "a message that is not known: \"The determined sequence number: #5 #x\"");
    add("a sequence beyond an int", "Notice", "The determined sequence number: #2147483648",
        Entry::Unknown, {},
        "a message that is not known: \"The determined sequence number: #2147483648\"");
    add("a sequence of many digits", "Notice",
        "The determined sequence number: #99999999999999999999999999999", Entry::Unknown, {},
        "a message that is not known: \"The determined sequence number: "
        "#999999999999999999999999999\"");
    add("the largest sequence", "Information", "The determined sequence number: #2147483647",
        Entry::Determined, {2147483647});

    add("a restricted request", "Notice", restricted, Entry::Restricted, {5, 5000});
    add("a translated request", "Notiz", "Noch 5000 ms lang kein #5.", Entry::Restricted,
        {5, 5000});
    add("a number too many", "Notiz", "Noch 5000 ms lang kein #5 (1).", Entry::Unknown, {},
        "a message that is not known: \"Noch 5000 ms lang kein #5 (1).\"");
    add("an error with such numbers", "Error", restricted, Entry::Error, {}, restricted);

    add("a start", "Notice", "HvcCon process started.", Entry::Started);
    add("a stop", "Notice", "HvcCon process stopped.", Entry::Stopped);
    add("a translated start", "Notice", "HvcCon läuft.", Entry::Unknown, {},
        "a message that is not known: \"HvcCon läuft.\"");
    const char *const failed = "Error occured in the process controller. Failed to start.";
    add("an error", "Error", failed, Entry::Error, {}, failed);
    add("an error at a translated level", "Fehler", failed, Entry::Error, {}, failed);
    add("a translated error", "Error", "Absturz.", Entry::Error, {}, "Absturz.");
    add("a critical error", "Critical", "Failed twice", Entry::Error, {}, "Failed twice");
    add("a level that the plug-in does not use", "Warning", "x", Entry::Unknown, {},
        "a message that is not known: \"x\"");
    add("several lines that are not known", "Notice", "a\n b", Entry::Unknown, {},
        "a message that is not known: \"a b\"");
}

void tst_LogMessage::kinds()
{
    QFETCH(QString, level);
    QFETCH(QString, message);
    QFETCH(Entry::Kind, kind);
    QFETCH(QVector<int>, numbers);
    QFETCH(QString, text);

    Entry entry;
    readLogMessage(level.toUtf8(), message, &entry);
    QCOMPARE(entry.kind, kind);
    QCOMPARE(entry.text, text);
    if (kind == Entry::Restricted)
        QCOMPARE(QVector<int>({entry.number, entry.limitMs}), numbers);
    else
        QCOMPARE(entry.numbers, numbers);
}

QTEST_GUILESS_MAIN(tst_LogMessage)

#include "tst_logmessage.moc"
