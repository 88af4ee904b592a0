#include "PluginFixture.h"
#include "tests/support/TimeZone.h"
#include "tests/support/Waiting.h"

#include <QAbstractAnimation>
#include <QApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QGraphicsTextItem>
#include <QMetaType>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>
#include <limits>
#include <stdexcept>

using namespace KrTest;
using namespace PluginTest;

namespace {

/// #1 and #2 for the young, #3 and #4 for the old.
const QVector<Content> FourContents{
    {20, 39, Female, false},
    {20, 39, Male, false},
    {40, 59, Female, false},
    {40, 59, Male, false},
};

QString invalid(int number)
{
    return rendered(
        QStringLiteral("<span style=\"color:yellow\">Sequence #%1 is invalid.</span>").arg(number));
}

QString restricted(int number)
{
    return rendered(QStringLiteral(
        "<span style=\"color:yellow\">#%1 is not sent now (within restricted).</span>")
                        .arg(number));
}

QString sent(int number)
{
    return renderedText(QStringLiteral("A switch to #%1 has been sent.").arg(number));
}

QString determinedRecord(const QString &numbers)
{
    return record(
        QStringLiteral("Information"), QStringLiteral("The determined sequence number:") + numbers);
}

QString restrictedRecord(int number, int limitMs)
{
    return record(QStringLiteral("Notice"),
        QStringLiteral("#%1 is not sent now because it is within the limited min-time(%2 msec.).")
            .arg(number)
            .arg(limitMs));
}

QString reportRecord(const QString &rows)
{
    return record(QStringLiteral("Information"), plainReport(table(rows)));
}

QList<int> indexes(const QSignalSpy &spy)
{
    QList<int> result;
    for (const QList<QVariant> &arguments : spy)
        result.append(arguments.constFirst().toInt());
    return result;
}

/// A viewer that contents of FourContents fit.
struct Viewer
{
    int index;
    int size;
    int age;
    QString gender;

    QString lines() const { return faceLines(index, size, age, gender); }
    QString rows() const { return faceRows(index, size, age, gender); }
};

const QMap<QChar, Viewer> Viewers{
    {QLatin1Char('w'), {0, 100, 30, QStringLiteral("Female")}}, // fits #1
    {QLatin1Char('m'), {1, 200, 30, QStringLiteral("Male")}}, // fits #2
    {QLatin1Char('o'), {2, 300, 50, QStringLiteral("Female")}}, // fits #3
    {QLatin1Char('x'), {3, 90, 25, QStringLiteral("Female")}}, // fits #1
    {QLatin1Char('c'), {4, 400, 5, QStringLiteral("Male")}}, // fits nothing
};

/// The sensor's text about the viewers with these letters.
QString lines(const QString &viewers)
{
    QString result;
    for (const QChar viewer : viewers)
        result += Viewers.value(viewer).lines();
    return result;
}

/// The rows that the panel shows of lines().
QString rows(const QString &viewers)
{
    QString result;
    for (const QChar viewer : viewers)
        result += Viewers.value(viewer).rows();
    return result;
}

/// The elements of a results list, member by member as the plug-in registers the type.
struct Result
{
    int faceIndex = -1;
    double score = 0;
    int seqNumber = 0;
    QList<int> restrictionKeys;
    QDateTime time;
};

} // namespace

/// A host that does something when the plug-in asks for a sequence.
class Host : public QObject
{
    Q_OBJECT

public:
    Host(const LoadedPlugin &plugin, std::function<void(int)> reaction)
        : m_reaction(std::move(reaction))
    {
        connect(plugin.object(), SIGNAL(contentStarted(int)), this, SLOT(onStarted(int)));
    }

    QList<int> requests; ///< the indexes that the plug-in asked for

private slots:
    void onStarted(int seqIndex)
    {
        requests.append(seqIndex);
        m_reaction(seqIndex);
    }

private:
    std::function<void(int)> m_reaction;
};

/// A host that does something when the plug-in hands it a message for its log.
class LogHost : public QObject
{
    Q_OBJECT

public:
    std::function<void()> reaction;

public slots:
    void onMessage() { reaction(); }
};

Q_DECLARE_METATYPE(std::function<void(LoadedPlugin &)>)

class tst_Requests : public QObject
{
    Q_OBJECT

private slots:
    void invalidNumber_data();
    void invalidNumber();
    void theSmallestNumberDoesNoHarm();
    void sending();
    void restriction();
    void noRestrictionWithoutLimit();
    void sentAgainAfterTheLimit();
    void sharedAndDisjointScreens();
    void partlyRestrictedRenewsTheOthers();
    void sentTimesSurvive_data();
    void sentTimesSurvive();
    void frame_data();
    void frame();
    void report_data();
    void report();
    void unboundedMarkup_data();
    void unboundedMarkup();
    void longWord();
    void aFaceCutInTwoIsLost();
    void manySmallChunks();
    void failuresKeepTheirOrder();
    void resultsByName_data();
    void resultsByName();
    void levelByName_data();
    void levelByName();
    void logSlots_data();
    void logSlots();
    void placeholdersInALogMessage();
    void screenValuesUpdatedReadsTheSettingsAgain();
    void initKeepsTheSettings();
    void contentsTakeEffectWithInit();
    void strangeScreens_data();
    void strangeScreens();
    void newestResultsRunAfterTheHostReturns();
    void putOffResultsAreForgotten_data();
    void putOffResultsAreForgotten();
    void requestByHandInsideTheHost();
    void hostThrows_data();
    void hostThrows();
    void hostDeletesThePlugin();
    void hostDeletesThePluginInALogMessage();
    void hostDeletesThePanel();
    void hostInitializesAnew();
    void releasedPanelGetsNothingMore();
    void restrictionInAnotherTimeZone_data();
    void restrictionInAnotherTimeZone();
    void chunkWhileTheLogWaits_data();
    void chunkWhileTheLogWaits();
    void stopWhileTheLogWaits_data();
    void stopWhileTheLogWaits();
    void pluginDeletedWhileTheLogWaits();
    void panelDeletedWhileTheLogWaits();
    void panelMovesWhileTheLogWaits();
};

void tst_Requests::invalidNumber_data()
{
    QTest::addColumn<QVector<Content>>("contents");
    QTest::addColumn<int>("number");

    QTest::newRow("no contents at all") << QVector<Content>() << 1;
    QTest::newRow("number 0") << FourContents << 0;
    QTest::newRow("negative number") << FourContents << -3;
    QTest::newRow("just above the last one") << FourContents << 5;
    QTest::newRow("minimum age above the maximum age")
        << QVector<Content>{{31, 30, Both, false}} << 1;
    QTest::newRow("gender that is none") << QVector<Content>{{20, 30, {}, false}} << 1;
    QTest::newRow("negative minimum age") << QVector<Content>{{-1, 30, Both, false}} << 1;
    QTest::newRow("its number was used up by an invalid entry")
        << QVector<Content>{{31, 30, Both, false}, {20, 30, Both, false}} << 1;
}

void tst_Requests::invalidNumber()
{
    QFETCH(QVector<Content>, contents);
    QFETCH(int, number);
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(contents);

    plugin->requestSequenceNumber(number);
    plugin->requestSequenceIndex(number - 1); // reported each time
    QTRY_COMPARE(panel.noticeHtml(), QStringList({invalid(number), invalid(number)}));
    QCOMPARE(indexes(spy), QList<int>());
    QCOMPARE(plugin->currentSequenceIndex(), -1);
    QCOMPARE(plugin.log(), QString());
}

void tst_Requests::theSmallestNumberDoesNoHarm()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents);
    plugin->requestSequenceNumber(std::numeric_limits<int>::min());
    plugin->requestSequenceIndex(std::numeric_limits<int>::max());
    QTRY_COMPARE(panel.noticeTexts().size(), 2);
    QCOMPARE(indexes(spy), QList<int>());
}

void tst_Requests::sending()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(1, AnHour));

    plugin->requestSequenceNumber(2);
    QCOMPARE(indexes(spy), QList<int>({1}));
    QCOMPARE(plugin->currentSequenceIndex(), 1);
    QCOMPARE(plugin->currentSequenceNumber(), 2);
    plugin->requestSequenceIndex(3);
    QCOMPARE(indexes(spy), QList<int>({1, 3}));
    QCOMPARE(plugin->currentSequenceIndex(), 3);
    QTRY_COMPARE(panel.noticeHtml(), QStringList({sent(2), sent(4)}));
    QCOMPARE(plugin.log(), QString());
}

void tst_Requests::restriction()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(1, AnHour));

    plugin->requestSequenceIndex(0);
    plugin->requestSequenceIndex(1);
    plugin->requestSequenceIndex(0);
    QCOMPARE(indexes(spy), QList<int>({0, 1}));
    QCOMPARE(plugin->currentSequenceIndex(), 1);
    QTRY_COMPARE(panel.noticeHtml(), QStringList({sent(1), sent(2), restricted(1)}));
    QCOMPARE(plugin.log(), restrictedRecord(1, AnHour));
}

void tst_Requests::noRestrictionWithoutLimit()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(1, 0));
    for (int i = 0; i < 3; ++i)
        plugin->requestSequenceIndex(0);
    QCOMPARE(indexes(spy), QList<int>({0, 0, 0}));
    QTRY_COMPARE(panel.noticeHtml(), QStringList({sent(1), sent(1), sent(1)}));
    QCOMPARE(plugin.log(), QString());
}

void tst_Requests::sentAgainAfterTheLimit()
{
    LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(1, 200));
    QElapsedTimer timer;
    timer.start();
    plugin->requestSequenceIndex(0);
    // A restricted request leaves the time of the last one that was sent.
    QTRY_VERIFY((plugin->requestSequenceIndex(0), spy.size() == 2));
    QVERIFY(timer.elapsed() >= 199); // two clocks, each rounds
    QCOMPARE(indexes(spy), QList<int>({0, 0}));
}

void tst_Requests::sharedAndDisjointScreens()
{
    LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, {{11, {1, 2}}, {12, {3}}, {13, {4}}}, settings(1, AnHour));
    plugin->requestSequenceIndex(0);
    plugin->requestSequenceIndex(1); // the same screen follows it
    plugin->requestSequenceIndex(2);
    plugin->requestSequenceIndex(3);
    QCOMPARE(indexes(spy), QList<int>({0, 2, 3}));
    QCOMPARE(plugin.log(), restrictedRecord(2, AnHour));
}

void tst_Requests::partlyRestrictedRenewsTheOthers()
{
    LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, {{11, {1, 2}}, {12, {2, 3}}}, settings(1, AnHour));
    plugin->requestSequenceIndex(0); // screen 11
    plugin->requestSequenceIndex(1); // restricted by screen 11, stamps screen 12
    plugin->requestSequenceIndex(2); // restricted by screen 12 for that reason
    QCOMPARE(indexes(spy), QList<int>({0}));
    QCOMPARE(plugin.log(), QString(restrictedRecord(2, AnHour) + restrictedRecord(3, AnHour)));
}

void tst_Requests::sentTimesSurvive_data()
{
    using Action = std::function<void(LoadedPlugin &)>;
    QTest::addColumn<Action>("action");
    QTest::newRow("init") << Action([](LoadedPlugin &plugin) { plugin->init(); });
    QTest::newRow("stop") << Action([](LoadedPlugin &plugin) { plugin->stop(); });
    QTest::newRow("reload") << Action([](LoadedPlugin &plugin) { plugin->reload(); });
    QTest::newRow("pause") << Action([](LoadedPlugin &plugin) { plugin->pause(); });
    QTest::newRow("another stage") << Action([](LoadedPlugin &plugin) {
        plugin->setStage(linkedStage({{101, {1}}}));
        plugin->init();
    });
}

void tst_Requests::sentTimesSurvive()
{
    QFETCH(std::function<void(LoadedPlugin &)>, action);
    LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(1, AnHour));
    plugin->requestSequenceIndex(0);
    action(plugin);
    plugin->requestSequenceIndex(0);
    QCOMPARE(indexes(spy), QList<int>({0}));
    QCOMPARE(plugin->currentSequenceIndex(), 0);
    QCOMPARE(plugin.log(), restrictedRecord(1, AnHour));
}

void tst_Requests::frame_data()
{
    QTest::addColumn<int>("concurrent");
    QTest::addColumn<int>("limit");
    QTest::addColumn<QString>("viewers");
    QTest::addColumn<QList<int>>("determined");
    QTest::addColumn<QList<int>>("refused"); // of these numbers, the ones within the limit
    QTest::addColumn<QList<int>>("started");

    const auto row
        = [](const char *name, int concurrent, int limit, const char *viewers,
              const QList<int> &determined, const QList<int> &refused, const QList<int> &started) {
              QTest::newRow(name) << concurrent << limit << QString::fromLatin1(viewers)
                                  << determined << refused << started;
          };
    row("one viewer", 1, AnHour, "w", {1}, {}, {0});
    row("of three only the most prominent", 1, AnHour, "wmo", {3}, {}, {2});
    row("of three the two most prominent", 2, AnHour, "wmo", {3, 2}, {}, {2, 1});
    row("as many as there are", 20, AnHour, "mow", {3, 2, 1}, {}, {2, 1, 0});
    row("two with the same content, within the limit", 3, AnHour, "wx", {1, 1}, {1}, {0});
    row("two with the same content, without limit", 3, 0, "wx", {1, 1}, {}, {0, 0});
    row("nobody fits", 3, AnHour, "c", {}, {}, {});
    row("the most prominent fits nothing and does not count", 1, AnHour, "cw", {1}, {}, {0});
    row("an empty chunk", 1, AnHour, "", {}, {}, {});
}

void tst_Requests::frame()
{
    QFETCH(int, concurrent);
    QFETCH(int, limit);
    QFETCH(QString, viewers);
    QFETCH(QList<int>, determined);
    QFETCH(QList<int>, refused);
    QFETCH(QList<int>, started);
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(concurrent, limit));

    QVERIFY(plugin.receive(lines(viewers)));

    QCOMPARE(indexes(spy), started);
    QCOMPARE(plugin->currentSequenceIndex(), started.isEmpty() ? -1 : started.constLast());
    QString log = reportRecord(rows(viewers));
    QString numbers;
    for (const int number : determined)
        numbers += QStringLiteral(" #%1").arg(number);
    for (const int number : refused)
        log += restrictedRecord(number, limit);
    if (!determined.isEmpty())
        log += determinedRecord(numbers);
    QCOMPARE(plugin.log(), log);

    QStringList notices;
    for (const int index : started)
        notices.append(sent(index + 1));
    for (const int number : refused)
        notices.append(restricted(number));
    QTRY_COMPARE(panel.noticeHtml(), notices);
    QTRY_COMPARE(panel.statusHtml(),
        QStringList({renderedText(QStringLiteral("KrHvcP2 Plugin initialized.")),
            rendered(table(rows(viewers)))}));
}

void tst_Requests::report_data()
{
    QTest::addColumn<QString>("chunk");
    QTest::addColumn<QString>("expectedRows");
    QTest::addColumn<QString>("level");

    const auto row = [](const char *name, const char *chunk, const char *html, const char *level) {
        QTest::newRow(name) << QString::fromUtf8(chunk) << QString::fromUtf8(html)
                            << QString::fromLatin1(level);
    };
    row("a whole frame",
        "Face result count:1\n"
        "Index:0\tX:320 Y:240 Size:120 Confidence:800\n"
        "Face Direction\tLR:5 UD:-3 Roll:1 Confidence:700\n"
        "Age\tAge:34 Confidence:500\n"
        "Gender\tGender:Female Confidence:900 *\n",
        "<tr><td><span style=\"color:white;\">Face result count:1</span></td></tr>"
        "<tr><td style=\"font-weight:bold;\">Index:0</td>"
        "<td>X:320 Y:240 Size:120 Confidence:800 </td></tr>"
        "<tr><td>Face Direction</td><td>LR:5 UD:-3 Roll:1 Confidence:700 </td></tr>"
        "<tr><td>Age</td>"
        "<td>Age:<span style=\"color:yellow;\">34</span> Confidence:500 </td></tr>"
        "<tr><td>Gender</td><td style=\"color:lime;\">"
        "Gender:<span style=\"color:deeppink;\">Female </span>Confidence:900 *</td></tr>"
        "<tr><td></td></tr>",
        "Information");
    row("a closed port", "Failed to open COM port.\r\n",
        "<tr><td><span style=\"color:red;font-weight:bold;\">Failed to open COM port.</span></td>"
        "</tr>",
        "Error");
    row("a closed port in odd case is shown as usual", "FAILED to open com PORT.\n",
        "<tr><td><span style=\"color:red;font-weight:bold;\">Failed to open COM port.</span></td>"
        "</tr>",
        "Error");
    row("another failure is shown as it is", "The sensor: failed again\n",
        "<tr><td><span style=\"color:red;font-weight:bold;\">The sensor: failed again</span></td>"
        "</tr>",
        "Error");
    row("a failure goes before an empty frame", "Face result count:0\nFailed again\n",
        "<tr><td><span style=\"color:orange;\">Face result count:0</span></td></tr>"
        "<tr><td><span style=\"color:red;font-weight:bold;\">Failed again</span></td></tr>",
        "Error");
    row("no face", "Face result count:0\n",
        "<tr><td><span style=\"color:orange;\">Face result count:0</span></td></tr>", "Notice");
    row("no face in odd case", "FACE result Count:0\r\n",
        "<tr><td><span style=\"color:orange;\">FACE result Count:0</span></td></tr>", "Notice");
    row("a face count without number", "Face result count:\n",
        "<tr><td><span style=\"color:white;\">Face result count:</span></td></tr>", "Information");
    row("the end prompt has no row", "press SPACE key to end: ", "", "Information");
    row("only a line end", "\r\n", "<tr></tr>", "Information");
    row("a word alone", "Noise\n", "<tr></tr>", "Information");
    row("placeholders are text", "%1\t%2 %99\nAge\tAge:%1\n",
        "<tr><td>%1</td><td></td></tr><tr><td>Age</td><td>Age:%1</td></tr>", "Information");
    row("marked-up text is not escaped", "<b>Bold</b>\tx\n",
        "<tr><td><b>Bold</b></td><td></td></tr>", "Information");
    row("text in another script", "\xe5\xb9\xb4\xe9\xbd\xa2\tAge:34\n",
        "<tr><td>\xe5\xb9\xb4\xe9\xbd\xa2</td><td></td></tr>", "Information");
}

void tst_Requests::report()
{
    QFETCH(QString, chunk);
    QFETCH(QString, expectedRows);
    QFETCH(QString, level);
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    QVERIFY(plugin.receive(chunk));
    QString log = record(level, plainReport(table(expectedRows)));
    if (expectedRows.contains(QLatin1String("%1"))) {
        // The record's own parts are filled in one after the other.
        const QString end = QString(37, QLatin1Char('=')) + QStringLiteral(" <<");
        log.chop(end.size() + 2);
        log.replace(QStringLiteral("%1"), end);
        log += QStringLiteral("%3\n\n");
    }
    QCOMPARE(plugin.log(), log);
    QTRY_COMPARE(panel.statusHtml(), QStringList({rendered(table(expectedRows))}));
    QCOMPARE(panel.noticeHtml(), QStringList());
}

void tst_Requests::unboundedMarkup_data()
{
    QTest::addColumn<QString>("chunk");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("level");

    const auto row = [](const char *name, const QString &chunk, const QString &text,
                         const QString &level) { QTest::newRow(name) << chunk << text << level; };
    const QString tables = QStringLiteral("<table><tr><td>").repeated(20);
    row("nested tables", tables + QStringLiteral("\tx\n"), tables + QStringLiteral("\tx\n"),
        QStringLiteral("Information"));
    row("nested tables in a failure", QStringLiteral("Failed ") + tables + QLatin1Char('\n'),
        QStringLiteral("Failed ") + tables + QLatin1Char('\n'), QStringLiteral("Error"));
    row("a length in an empty frame",
        QStringLiteral("Face result count:0\r\n\r\nPress Space Key to end:\n\n"
                       " <td style=\"padding:2000000000px\">\tx\n"),
        QStringLiteral("Face result count:0\n<td style=\"padding:2000000000px\">\tx\n"),
        QStringLiteral("Notice"));
}

void tst_Requests::unboundedMarkup()
{
    QFETCH(QString, chunk);
    QFETCH(QString, text);
    QFETCH(QString, level);
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(1, AnHour));

    const QString viewer = lines(QStringLiteral("w"));
    text += viewer.trimmed();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(plugin.receive(chunk + viewer));
    QTRY_COMPARE(panel.statusHtml().size(), 2);
    QVERIFY(timer.elapsed() < 5000);

    QCOMPARE(panel.statusHtml().constLast(), renderedText(text));
    QCOMPARE(indexes(spy), QList<int>({0}));
    QCOMPARE(plugin.log(), QString(record(level, text) + determinedRecord(QStringLiteral(" #1"))));
}

void tst_Requests::longWord()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const QString text = QStringLiteral("Failed ") + QString(1000000, QLatin1Char('x'));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(plugin.receive(text));
    QTRY_COMPARE(panel.statusTexts().size(), 1);
    QVERIFY(timer.elapsed() < 5000);
    QVERIFY(panel.statusTexts().constFirst().startsWith(text.left(1000)));
    QCOMPARE(plugin.log(), record(QStringLiteral("Error"), text));
}

void tst_Requests::aFaceCutInTwoIsLost()
{
    LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(20, 0));
    const QString text = lines(QStringLiteral("wm"));
    const int cut = text.indexOf(QStringLiteral("Age:30")) + 4;
    QVERIFY(plugin.receive(text.left(cut)));
    QVERIFY(plugin.receive(text.mid(cut)));
    QCOMPARE(indexes(spy), QList<int>({1})); // the second face is whole
}

void tst_Requests::manySmallChunks()
{
    constexpr int Chunks = 500;
    LoadedPlugin plugin;
    const auto shown = [&plugin] { return plugin->graphicsItem()->childItems().size(); };
    const int atRest = shown();
    const QObject *panel = dynamic_cast<QObject *>(plugin->graphicsItem());
    for (int i = 0; i < Chunks; ++i)
        QVERIFY(plugin.receive(QStringLiteral("x")));
    // Each is a message; the last one stays, and nothing of all others.
    QTRY_VERIFY_WITH_TIMEOUT(shown() > atRest + 1, Patience);
    QTRY_COMPARE_WITH_TIMEOUT(shown(), atRest + 1, Patience);
    QTRY_VERIFY_WITH_TIMEOUT(panel->findChildren<QAbstractAnimation *>().isEmpty(), Patience);
    QCOMPARE(plugin.log(), record(QStringLiteral("Information"), QString()).repeated(Chunks));
}

void tst_Requests::failuresKeepTheirOrder()
{
    constexpr int Failures = 300;
    LoadedPlugin plugin;
    QString expected;
    for (int number = 1; number <= Failures; ++number) {
        expected += record(QStringLiteral("Error"), QStringLiteral("Failed at %1").arg(number));
    }

    // Two thirds of them arrive while the first one waits for the log.
    const QString lock = plugin.takeLogLock();
    int count = 0;
    int depth = 0;
    int deepest = 0;
    const auto failOnce = [&] {
        deepest = qMax(deepest, ++depth);
        plugin.receive(QStringLiteral("Failed at %1\n").arg(++count));
        --depth;
    };
    QTimer sensor;
    connect(&sensor, &QTimer::timeout, plugin.object(), [&] {
        for (int i = 0; i < 10; ++i)
            failOnce();
        if (count < Failures * 2 / 3)
            return;
        sensor.stop();
        QFile::remove(lock);
    });
    sensor.start(1);
    failOnce();
    while (count < Failures)
        failOnce();
    QCOMPARE(deepest, 2); // the one that waits, and one at a time
    QCOMPARE(plugin.log(), expected);
}

void tst_Requests::resultsByName_data()
{
    QTest::addColumn<int>("connection");
    QTest::addColumn<int>("concurrent");
    QTest::addColumn<QList<int>>("numbers");
    QTest::addColumn<QList<int>>("started");
    QTest::addColumn<QString>("log");

    const auto row = [](const char *name, int concurrent, const QList<int> &numbers,
                         const QList<int> &started, const QString &log) {
        QTest::addRow("%s, at once", name)
            << int(Qt::DirectConnection) << concurrent << numbers << started << log;
        QTest::addRow("%s, queued", name)
            << int(Qt::QueuedConnection) << concurrent << numbers << started << log;
    };
    row("no results", 1, {}, {}, QString());
    row("one result", 1, {2}, {1}, determinedRecord(QStringLiteral(" #2")));
    row("more than are allowed", 2, {4, 1, 2}, {3, 0}, determinedRecord(QStringLiteral(" #4 #1")));
    row("a result without number uses up its place", 2, {0, 2, 3}, {1},
        determinedRecord(QStringLiteral(" #2")));
    row("only results without number", 2, {0, -5}, {}, determinedRecord(QString()));
    row("a number without content is named all the same", 1, {9}, {},
        determinedRecord(QStringLiteral(" #9")));
}

void tst_Requests::resultsByName()
{
    QFETCH(int, connection);
    QFETCH(int, concurrent);
    QFETCH(QList<int>, numbers);
    QFETCH(QList<int>, started);
    QFETCH(QString, log);
    LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(concurrent, AnHour));

    const int type = QMetaType::type("CalculatedData");
    QVERIFY(type != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("QList<CalculatedData>") != QMetaType::UnknownType);
    QCOMPARE(QMetaType::sizeOf(type), int(sizeof(Result)));
    QList<Result> results;
    for (const int number : numbers) {
        Result result;
        result.seqNumber = number;
        results.append(result);
    }
    QVERIFY(QMetaObject::invokeMethod(plugin.object(), "sendStartedEvents",
        Qt::ConnectionType(connection), QGenericArgument("QList<CalculatedData>", &results)));
    if (connection == Qt::QueuedConnection)
        QCOMPARE(indexes(spy), QList<int>());
    QCoreApplication::sendPostedEvents(plugin.object(), QEvent::MetaCall);
    QCOMPARE(indexes(spy), started);
    QCOMPARE(plugin.log(), log);
}

void tst_Requests::levelByName_data()
{
    QTest::addColumn<int>("connection");
    QTest::addColumn<int>("level");
    for (int level = 0; level <= 5; ++level) {
        QTest::addRow("level %d at once", level) << int(Qt::DirectConnection) << level;
        QTest::addRow("level %d queued", level) << int(Qt::QueuedConnection) << level;
    }
}

void tst_Requests::levelByName()
{
    QFETCH(int, connection);
    QFETCH(int, level);
    const LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(throwLogMessage(QString, int)));
    QVERIFY(spy.isValid());
    QVERIFY(QMetaType::type("LogDivision") != QMetaType::UnknownType);
    QVERIFY(
        QMetaObject::invokeMethod(plugin.object(), "sendLogMessage", Qt::ConnectionType(connection),
            Q_ARG(QString, QStringLiteral("100 %1")), QGenericArgument("LogDivision", &level)));
    QCoreApplication::sendPostedEvents(plugin.object(), QEvent::MetaCall);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.constFirst(), QVariantList({QStringLiteral("100 %1"), level}));
    QCOMPARE(plugin.log(), QString()); // the host logs it
}

void tst_Requests::logSlots_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QString>("level");
    QTest::newRow("starting failed")
        << QByteArrayLiteral("onFailedToStart") << QStringLiteral("Critical");
    QTest::newRow("error") << QByteArrayLiteral("onErrorOccured") << QStringLiteral("Error");
    QTest::newRow("critical error")
        << QByteArrayLiteral("onCriticalErrorOccured") << QStringLiteral("Critical");
}

void tst_Requests::logSlots()
{
    QFETCH(QByteArray, slot);
    QFETCH(QString, level);
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    QVERIFY(QMetaObject::invokeMethod(plugin.object(), slot.constData(), Qt::DirectConnection,
        Q_ARG(QString, QStringLiteral("\n  Something <b>odd</b>\nin two lines. \n"))));
    QCOMPARE(plugin.log(), record(level, QStringLiteral("Something <b>odd</b>\nin two lines.")));
    QCOMPARE(plugin->status(), 199);
    plugin->reload(); // a line that is shown, so that one more would have been seen
    QTRY_COMPARE(panel.statusTexts(), QStringList({QStringLiteral("Reloaded.")}));
}

void tst_Requests::placeholdersInALogMessage()
{
    const LoadedPlugin plugin;
    QVERIFY(QMetaObject::invokeMethod(plugin.object(), "onErrorOccured", Qt::DirectConnection,
        Q_ARG(QString, QStringLiteral("a %1 b"))));
    // The record's own parts are filled in one after the other.
    QCOMPARE(plugin.log(),
        QString(QStringLiteral(">> yyyy-MM-dd hh:mm:ss [Error]==========\na ")
            + QString(37, QLatin1Char('=')) + QStringLiteral(" << b\n%3\n\n")));
}

void tst_Requests::screenValuesUpdatedReadsTheSettingsAgain()
{
    LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(7, AnHour));
    plugin->setPluginData(screenData({},
        {{QStringLiteral("interval"), 90000}, {QStringLiteral("concurrent"), 0},
            {QStringLiteral("display-monitoring"), QStringLiteral("TRUE")},
            {QStringLiteral("age-confidence"), QStringLiteral("text")}}));

    QVERIFY(QMetaObject::invokeMethod(plugin.object(), "onScreenValuesUpdated",
        Qt::QueuedConnection, Q_ARG(int, 4711), Q_ARG(QList<int>, QList<int>({3}))));
    QCoreApplication::sendPostedEvents(plugin.object(), QEvent::MetaCall);

    const QVariantMap expected{
        {QStringLiteral("display-monitoring"), true},
        {QStringLiteral("interval"), 90000}, // no range check here
        {QStringLiteral("face-detection-confidence"), 0},
        {QStringLiteral("face-direction-confidence"), 0},
        {QStringLiteral("age-confidence"), 0},
        {QStringLiteral("gender-confidence"), 0},
        {QStringLiteral("concurrent"), 0},
        {QStringLiteral("event-sending-limit"), 5000},
    };
    QCOMPARE(plugin->params().toMap(), expected);
    QVERIFY(!plugin->graphicsItem()->isVisible()); // only init() shows it

    QVERIFY(plugin.receive(lines(QStringLiteral("w")))); // none at once: nothing sent or named
    QCOMPARE(plugin.log(), reportRecord(rows(QStringLiteral("w"))));
    plugin->requestSequenceIndex(0); // the table is the old one
    QCOMPARE(indexes(spy), QList<int>({0}));
}

void tst_Requests::initKeepsTheSettings()
{
    LoadedPlugin plugin;
    plugin->setParams(settings(7, 1234));
    const QVariant before = plugin->params();
    plugin->setPluginData(screenData({}, settings(3, 99)));
    plugin->init();
    QCOMPARE(plugin->params(), before);
}

void tst_Requests::contentsTakeEffectWithInit()
{
    LoadedPlugin plugin;
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(FourContents, settings(1, 0));
    plugin->setPluginData(screenData({}));
    plugin->requestSequenceIndex(0);
    QCOMPARE(indexes(spy), QList<int>({0}));
    plugin->init();
    plugin->requestSequenceIndex(0);
    QCOMPARE(indexes(spy), QList<int>({0}));
    plugin->setPluginData(screenData(FourContents));
    plugin->setStage(Kora::KrPluginStage());
    plugin->init();
    plugin->requestSequenceIndex(0);
    QCOMPARE(indexes(spy), QList<int>({0}));
}

/// A map in a list in a map...
static QVariant nested(int depth)
{
    QVariant value;
    for (int i = 0; i < depth; ++i)
        value = QVariantMap{
            {QStringLiteral("contents"), QVariantList{value}}, {QStringLiteral("params"), value}};
    return value;
}

void tst_Requests::strangeScreens_data()
{
    QTest::addColumn<QVariant>("data");

    const auto contents = [](const QVariant &value) -> QVariant {
        return QVariantMap{{QStringLiteral("id"), ScreenId}, {QStringLiteral("contents"), value}};
    };
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("a text") << QVariant(QStringLiteral("contents"));
    QTest::newRow("a list") << QVariant(QVariantList{1, 2});
    QTest::newRow("maps in maps") << nested(1000);
    QTest::newRow("contents that are a number") << contents(7);
    QTest::newRow("contents that are nothing") << contents(QVariantList{{}, {}, {}});
    QTest::newRow("contents in contents") << contents(QVariantList{nested(1000)});
    QTest::newRow("params of another type")
        << contents(QVariantList{QVariantMap{{QStringLiteral("params"), 1e30}}});
}

void tst_Requests::strangeScreens()
{
    QFETCH(QVariant, data);
    LoadedPlugin plugin;
    const Host host(plugin, [](int) {});
    plugin->setStage(linkedStage({{11, {1}}}));
    plugin->setPluginData(data);
    QVERIFY(plugin->init());
    QVERIFY(QMetaObject::invokeMethod(
        plugin.object(), "onScreenValuesUpdated", Q_ARG(int, 0), Q_ARG(QList<int>, QList<int>())));
    QVERIFY(plugin.receive(lines(QStringLiteral("wmo"))));
    plugin->requestSequenceNumber(1);
    QCOMPARE(host.requests, QList<int>());
    for (const int index : {-1, 20, std::numeric_limits<int>::max()})
        QVERIFY(plugin->contentProperties(index).isEmpty());
    QVERIFY(plugin.log().startsWith(reportRecord(rows(QStringLiteral("wmo")))));
}

void tst_Requests::newestResultsRunAfterTheHostReturns()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(3, 0));
    const Host host(plugin, [&](int seqIndex) {
        if (seqIndex != 2)
            return;
        QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
        QVERIFY(plugin.receive(lines(QStringLiteral("m"))));
        QEventLoop loop; // a dialog of the host
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
    });

    QVERIFY(plugin.receive(lines(QStringLiteral("o"))));
    QCOMPARE(host.requests, QList<int>({2}));
    // Queued, and only the newest.
    QTRY_COMPARE(host.requests, QList<int>({2, 1}));
    QCOMPARE(plugin.log(),
        QString(reportRecord(rows(QStringLiteral("o"))) + reportRecord(rows(QStringLiteral("w")))
            + reportRecord(rows(QStringLiteral("m"))) + determinedRecord(QStringLiteral(" #3"))
            + determinedRecord(QStringLiteral(" #2"))));
    QVERIFY(plugin.receive(lines(QStringLiteral("w")))); // and the lock is free again
    QCOMPARE(host.requests, QList<int>({2, 1, 0}));
}

void tst_Requests::putOffResultsAreForgotten_data()
{
    QTest::addColumn<bool>("stops");
    QTest::newRow("by stop()") << true;
    QTest::newRow("by init(), which may bring other contents") << false;
}

void tst_Requests::putOffResultsAreForgotten()
{
    QFETCH(bool, stops);
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    const Host host(plugin, [&](int seqIndex) {
        if (seqIndex == 2)
            QVERIFY(plugin.receive(lines(QStringLiteral("m")))); // put off
    });
    QVERIFY(plugin.receive(lines(QStringLiteral("o"))));
    QVERIFY(stops ? plugin->stop() : plugin->init());
    QTest::qWait(50);
    QCOMPARE(host.requests, QList<int>({2}));
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    QCOMPARE(host.requests, QList<int>({2, 0}));
}

void tst_Requests::requestByHandInsideTheHost()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    const Host host(plugin, [&](int seqIndex) {
        if (seqIndex == 0)
            plugin->requestSequenceNumber(4);
    });
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    QCOMPARE(host.requests, QList<int>({0, 3}));
    QCOMPARE(plugin->currentSequenceIndex(), 3);
}

void tst_Requests::hostThrows_data()
{
    QTest::addColumn<bool>("byHand");
    QTest::newRow("for a viewer") << false;
    QTest::newRow("for a request by hand") << true;
}

void tst_Requests::hostThrows()
{
    QFETCH(bool, byHand);
#ifdef Q_OS_WIN
    QSKIP("whether an exception leaves a library depends on how each was built");
#endif
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    bool isCareless = true;
    const Host host(plugin, [&](int) {
        if (isCareless)
            throw std::runtime_error("the host's own fault");
    });
    const auto request = [&] {
        if (byHand)
            plugin->requestSequenceNumber(1);
        else
            plugin.receive(lines(QStringLiteral("w")));
    };
    QVERIFY_EXCEPTION_THROWN(request(), std::runtime_error);

    // It goes on as before, and no lock is held.
    isCareless = false;
    request();
    QVERIFY(plugin.receive(lines(QStringLiteral("m"))));
    QCOMPARE(host.requests, QList<int>({0, 0, 1}));
    QVERIFY(plugin.log().endsWith(
        reportRecord(rows(QStringLiteral("m"))) + determinedRecord(QStringLiteral(" #2"))));
}

void tst_Requests::hostDeletesThePlugin()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(3, 0));
    const QPointer<QObject> object = plugin.object();
    const Host host(plugin, [&](int) { plugin.destroy(); });
    QVERIFY(plugin.receive(lines(QStringLiteral("wmo"))));
    QVERIFY(object.isNull());
    QCOMPARE(host.requests, QList<int>({2}));
    QVERIFY(plugin.log().startsWith(reportRecord(rows(QStringLiteral("wmo")))));
}

void tst_Requests::hostDeletesThePluginInALogMessage()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    LogHost host;
    connect(plugin.object(), SIGNAL(throwLogMessage(QString, int)), &host, SLOT(onMessage()));
    host.reaction = [&plugin] { plugin.destroy(); };
    const int level = 3;
    QVERIFY(QMetaObject::invokeMethod(plugin.object(), "sendLogMessage",
        Q_ARG(QString, QStringLiteral("a")), QGenericArgument("LogDivision", &level)));
    QVERIFY(plugin.object() == nullptr);
}

void tst_Requests::hostDeletesThePanel()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(3, 0));
    const Host host(plugin, [&](int seqIndex) {
        if (seqIndex == 2)
            delete plugin->graphicsItem();
    });
    QVERIFY(plugin.receive(lines(QStringLiteral("wmo"))));
    QCOMPARE(host.requests, QList<int>({2, 1, 0}));
    QCOMPARE(plugin.log(),
        QString(reportRecord(rows(QStringLiteral("wmo")))
            + determinedRecord(QStringLiteral(" #3 #2 #1"))));
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    QCOMPARE(host.requests, QList<int>({2, 1, 0, 0}));
}

void tst_Requests::hostInitializesAnew()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(3, 0));
    const Host host(plugin, [&](int seqIndex) {
        if (seqIndex != 2)
            return;
        plugin->setParams(settings(1, 0));
        plugin->setPluginData(screenData({FourContents.at(0)}));
        plugin->stop();
        plugin->init();
    });
    QVERIFY(plugin.receive(lines(QStringLiteral("wmo"))));
    // The list that is being sent stays; #2 has no content any more.
    QCOMPARE(host.requests, QList<int>({2, 0}));
    QCOMPARE(plugin->status(), 110);
    QCOMPARE(plugin.controllers().size(), 1);
}

void tst_Requests::releasedPanelGetsNothingMore()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    const std::unique_ptr<Item> item(plugin->graphicsItem());
    plugin.init(FourContents, settings(1, 0));
    const QString initialized = QStringLiteral("KrHvcP2 Plugin initialized.");
    QTRY_COMPARE(panel.statusTexts(), QStringList({initialized}));
    plugin->releaseGraphicsItem();

    const Host host(plugin, [](int) {});
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    plugin->reload();
    QCOMPARE(host.requests, QList<int>({0})); // sent without a panel
    QCOMPARE(plugin.log(),
        QString(reportRecord(rows(QStringLiteral("w"))) + determinedRecord(QStringLiteral(" #1"))));

    Item *newer = plugin->graphicsItem();
    QVERIFY(newer != item.get());
    PanelRecorder &newPanel = plugin.panel();
    plugin->reload();
    QTRY_COMPARE(newPanel.statusTexts(), QStringList({QStringLiteral("Reloaded.")}));
    QCOMPARE(newPanel.noticeTexts(), QStringList());
}

void tst_Requests::restrictionInAnotherTimeZone_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::newRow("later by the clock on the wall") << QByteArray("KRA-14");
    QTest::newRow("earlier by the clock on the wall") << QByteArray("KRB+12");
}

void tst_Requests::restrictionInAnotherTimeZone()
{
    QFETCH(QByteArray, zone);
    constexpr int LimitMs = 2000;
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, LimitMs));
    const Host host(plugin, [](int) {});
    QElapsedTimer sinceFirst;
    sinceFirst.start();
    plugin->requestSequenceNumber(1);

    const TimeZone moved(zone);
    plugin->requestSequenceNumber(1);
    if (sinceFirst.elapsed() < LimitMs)
        QCOMPARE(host.requests, QList<int>({0}));
    QTest::qWait(LimitMs);
    plugin->requestSequenceNumber(1);
    QCOMPARE(host.requests, QList<int>({0, 0}));
}

void tst_Requests::chunkWhileTheLogWaits_data()
{
    QTest::addColumn<QString>("chunk");
    QTest::addColumn<QString>("report");
    QTest::addColumn<QList<int>>("requests");
    QTest::addColumn<QString>("determined");

    const QString nobody = QStringLiteral("Face result count:0");
    QTest::newRow("a newer viewer")
        << lines(QStringLiteral("m")) << reportRecord(rows(QStringLiteral("m"))) << QList<int>({1})
        << determinedRecord(QStringLiteral(" #2"));
    QTest::newRow("nobody any more")
        << nobody << record(QStringLiteral("Notice"), nobody) << QList<int>() << QString();
    QTest::newRow("the rest of the frame that waits")
        << QStringLiteral("Press Space Key to end:\n")
        << record(QStringLiteral("Information"), QString()) << QList<int>({0})
        << determinedRecord(QStringLiteral(" #1"));
}

void tst_Requests::chunkWhileTheLogWaits()
{
    QFETCH(QString, chunk);
    QFETCH(QString, report);
    QFETCH(QList<int>, requests);
    QFETCH(QString, determined);
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    const Host host(plugin, [](int) {});
    const QString lock = plugin.takeLogLock();

    int depth = 0;
    QTimer::singleShot(100, plugin.object(), [&] {
        ++depth;
        QVERIFY(plugin.receive(chunk)); // handled at once
        QCOMPARE(plugin.log(), QString()); // all but its records
        QVERIFY(QFile::remove(lock));
    });
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    QCOMPARE(depth, 1);
    // The older viewer is not sent behind the newer one.
    QCOMPARE(host.requests, requests);
    QCOMPARE(plugin.log(), QString(reportRecord(rows(QStringLiteral("w"))) + report + determined));
    QVERIFY(!QFileInfo::exists(lock));
}

void tst_Requests::stopWhileTheLogWaits_data()
{
    QTest::addColumn<bool>("stops");
    QTest::newRow("stop()") << true;
    QTest::newRow("init(), which may bring other contents") << false;
}

void tst_Requests::stopWhileTheLogWaits()
{
    QFETCH(bool, stops);
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    const Host host(plugin, [](int) {});
    const QString lock = plugin.takeLogLock();
    QTimer::singleShot(50, plugin.object(), [&] {
        QVERIFY(stops ? plugin->stop() : plugin->init());
        QVERIFY(QFile::remove(lock));
    });
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    QCOMPARE(host.requests, QList<int>());
    QCOMPARE(plugin.log(), reportRecord(rows(QStringLiteral("w"))));
}

void tst_Requests::pluginDeletedWhileTheLogWaits()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    const Host host(plugin, [](int) {});
    const QString lock = plugin.takeLogLock();

    QTimer::singleShot(100, &host, [&] {
        plugin.destroy();
        QVERIFY(QFile::remove(lock));
    });
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    QVERIFY(plugin.object() == nullptr);
    QCOMPARE(host.requests, QList<int>());
    QCOMPARE(plugin.log(), reportRecord(rows(QStringLiteral("w"))));
    QVERIFY(!QFileInfo::exists(lock));
}

void tst_Requests::panelDeletedWhileTheLogWaits()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    const Host host(plugin, [](int) {});
    const QString lock = plugin.takeLogLock();

    QTimer::singleShot(100, &host, [&] {
        delete plugin->graphicsItem();
        QVERIFY(QFile::remove(lock));
    });
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    QCOMPARE(host.requests, QList<int>({0}));
    QCOMPARE(plugin.log(),
        QString(reportRecord(rows(QStringLiteral("w"))) + determinedRecord(QStringLiteral(" #1"))));
}

void tst_Requests::panelMovesWhileTheLogWaits()
{
    LoadedPlugin plugin;
    plugin.init(FourContents, settings(1, 0));
    const Item *panel = plugin->graphicsItem();
    const QString lock = plugin.takeLogLock();
    QVector<QPointF> positions; // of the frame's message while its record waits
    QTimer eye;
    connect(&eye, &QTimer::timeout, &eye, [&] {
        const QList<QGraphicsItem *> items = panel->childItems();
        for (const QGraphicsItem *item : items) {
            const auto *text = dynamic_cast<const QGraphicsTextItem *>(item);
            if (text != nullptr && text->toPlainText().contains(QStringLiteral("Index:0"))
                && !positions.contains(text->pos()))
                positions.append(text->pos());
        }
        if (positions.size() >= 3)
            QFile::remove(lock);
    });
    eye.start(5);
    QVERIFY(plugin.receive(lines(QStringLiteral("w"))));
    QVERIFY(positions.size() >= 3);
    QVERIFY(plugin.log().startsWith(reportRecord(rows(QStringLiteral("w")))));
}

QTEST_MAIN(tst_Requests)
#include "tst_requests.moc"
