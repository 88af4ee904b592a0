#include "tests/support/Files.h"
#include "tools/hvcp2/Chart.h"
#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Markup.h"
#include "tools/hvcp2/Program.h"

#include <QDir>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>
#include <QXmlStreamReader>
#include <QtTest>

#include <cmath>

using namespace Hvcp2;
using namespace KrTest;

namespace {

struct Result
{
    ExitStatus status = Fine;
    QString output;
    QString error;
};

Result run(const QStringList &arguments)
{
    Result result;
    QTextStream out(&result.output);
    QTextStream errors(&result.error);
    Console console{out, errors, Paint()};
    result.status = runProgram(arguments, QStringLiteral("1.2.3"), console);
    out.flush();
    errors.flush();
    return result;
}

using Rows = QVector<QStringList>; // the first cell names the row

/// What somebody who reads the page finds in it.
struct PageContent
{
    QHash<QString, QString> figures; // by id
    QHash<QString, Rows> tables; // by id; without their headings
    QHash<QString, QStringList> headings; // of the tables
    QStringList ids;
    QStringList references; // to ids
    QStringList elements;
    QStringList cells; // all, and the figures, in their order
    QString style; // of the page, not of pictures
    QString error;
};

PageContent readPage(const QString &html)
{
    PageContent page;
    QString table;
    bool isHead = false;
    bool isPicture = false;
    QXmlStreamReader reader(html);
    while (!reader.atEnd()) {
        reader.readNext();
        const QString name = reader.name().toString();
        if (reader.isEndElement() && name == QLatin1String("svg"))
            isPicture = false;
        if (!reader.isStartElement())
            continue;
        page.elements << name;
        const auto attribute = [&](const char *key) {
            return reader.attributes().value(QLatin1String(key)).toString();
        };
        const QString id = attribute("id");
        if (!id.isEmpty())
            page.ids << id;
        const QStringList labels = attribute("aria-labelledby").split(QLatin1Char(' '));
        for (const QString &label : labels) {
            if (!label.isEmpty())
                page.references << label;
        }
        if (attribute("href").startsWith(QLatin1Char('#')))
            page.references << attribute("href").mid(1);

        if (name == QLatin1String("svg")) {
            isPicture = true;
        } else if (name == QLatin1String("table")) {
            table = id;
            page.tables.insert(table, {});
        } else if (name == QLatin1String("thead") || name == QLatin1String("tbody")) {
            isHead = name == QLatin1String("thead");
        } else if (name == QLatin1String("tr") && !isHead) {
            page.tables[table].append(QStringList());
        } else if (name == QLatin1String("th") || name == QLatin1String("td")) {
            page.cells << reader.readElementText();
            (isHead ? page.headings[table] : page.tables[table].last()) << page.cells.last();
        } else if (name == QLatin1String("dd")) {
            page.cells << reader.readElementText();
            page.figures.insert(id, page.cells.last());
        } else if (name == QLatin1String("style") && !isPicture) {
            page.style = reader.readElementText();
        }
    }
    page.error = reader.errorString();
    return page;
}

/// -1 when it is no number as the page writes them.
qint64 numberOf(QString text)
{
    bool ok = false;
    const qint64 number = text.remove(QChar(0x202f)).toLongLong(&ok);
    return ok ? number : -1;
}

qint64 numberOf(const QJsonValue &value)
{
    return static_cast<qint64>(value.toDouble(-1));
}

/// The row of @p rows with that name as numbers; that many zeros when there is none.
QVector<qint64> numbersOf(const Rows &rows, const QString &name, int count)
{
    QVector<qint64> numbers;
    for (const QStringList &row : rows) {
        if (row.constFirst() != name)
            continue;
        for (const QString &cell : row.mid(1))
            numbers << numberOf(cell);
        return numbers;
    }
    return QVector<qint64>(count);
}

QVector<qint64> withSum(QVector<qint64> numbers)
{
    qint64 sum = 0;
    for (const qint64 number : qAsConst(numbers))
        sum += number;
    return numbers << sum;
}

QString hourName(int hour)
{
    return QStringLiteral("%1:00").arg(hour, 2, 10, QLatin1Char('0'));
}

const QStringList Genders{
    QStringLiteral("female"), QStringLiteral("male"), QStringLiteral("unknown")};
const QStringList Ages{QStringLiteral("0-9"), QStringLiteral("10-19"), QStringLiteral("20-29"),
    QStringLiteral("30-39"), QStringLiteral("40-49"), QStringLiteral("50-59"),
    QStringLiteral("60-69"), QStringLiteral("70+"), QStringLiteral("unknown")};

/// The values of a table for spreadsheets, summed by their figure and the cells that they fill:
/// "faces weekday hour".
QHash<QString, qint64> sumsOf(const QString &csv)
{
    constexpr int Cells = 7; // with the figure; the last ones are name and value
    QHash<QString, qint64> sums;
    const QStringList lines = csv.trimmed().split(QLatin1Char('\n'));
    const QStringList columns = lines.constFirst().split(QLatin1Char(','));
    for (const QString &line : lines.mid(1)) {
        const QStringList cells = line.split(QLatin1Char(','));
        QString key = cells.constFirst();
        for (int i = 1; i < Cells; ++i) {
            if (!cells.at(i).isEmpty())
                key += QLatin1Char(' ') + columns.at(i);
        }
        sums[key] += cells.constLast().toLongLong();
    }
    return sums;
}

/// The numbers of one gender of an audience.
QVector<qint64> agesOf(const QJsonValue &audience, const QString &gender)
{
    QVector<qint64> numbers;
    for (const QString &age : Ages)
        numbers << numberOf(audience.toObject().value(gender).toObject().value(age));
    return numbers;
}

QVector<qint64> listOf(const QJsonArray &array)
{
    QVector<qint64> numbers;
    for (const QJsonValue &value : array)
        numbers << numberOf(value);
    return numbers;
}

double luminance(const QString &color)
{
    const auto part = [&](int position) {
        const double value = color.mid(position, 2).toInt(nullptr, 16) / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(1) + 0.7152 * part(3) + 0.0722 * part(5);
}

double contrast(const QString &a, const QString &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (qMax(la, lb) + 0.05) / (qMin(la, lb) + 0.05);
}

} // namespace

/// The page of a report beside the figures that --json prints.
class tst_Hvcp2Report : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void figures_data();
    void figures();
    void tables_data();
    void tables();
    void structure_data();
    void structure();
    void chartLabels_data();
    void chartLabels();
    void contrasts();
    void browser_data();
    void browser();
    void refused_data();
    void refused();
    void silence();
    void roundSteps_data();
    void roundSteps();
    void groupedNumbers_data();
    void groupedNumbers();

private:
    static void addReports();
    QString page(const QString &arguments) const;

    QTemporaryDir m_directory;
};

void tst_Hvcp2Report::initTestCase()
{
    const QString directory = QFINDTESTDATA("golden");
    QVERIFY(!directory.isEmpty());
    QVERIFY(QDir::setCurrent(directory));
}

void tst_Hvcp2Report::addReports()
{
    QTest::addColumn<QString>("arguments"); // separated by blanks

    QTest::newRow("log") << "visitors.log.txt";
    QTest::newRow("log with a stage") << "visitors.log.txt --stage door.json";
    QTest::newRow("recording") << "visitors.out";
    QTest::newRow("recording with a stage") << "visitors.out --stage window.json";
    QTest::newRow("both") << "visitors.log.txt visitors.out --stage names.json";
    QTest::newRow("nothing") << "nothing.out";
}

/// The text of the page; empty when there is none.
QString tst_Hvcp2Report::page(const QString &arguments) const
{
    const QString file = m_directory.filePath(QStringLiteral("page.html"));
    QFile::remove(file);
    run(QStringList(QStringLiteral("report")) + arguments.split(QLatin1Char(' '))
        + QStringList{QStringLiteral("-o"), file});
    return readText(file);
}

void tst_Hvcp2Report::figures_data()
{
    addReports();
}

void tst_Hvcp2Report::figures()
{
    QFETCH(QString, arguments);

    const PageContent page = readPage(this->page(arguments));
    QCOMPARE(page.error, QString());
    const Result json = run(QStringList(QStringLiteral("report"))
        + arguments.split(QLatin1Char(' ')) + QStringList(QStringLiteral("--json")));
    const QJsonObject totals = QJsonDocument::fromJson(json.output.toUtf8())
                                   .object()
                                   .value(QStringLiteral("totals"))
                                   .toObject();
    QVERIFY(!totals.isEmpty());
    const auto number = [&](const char *key) { return numberOf(totals.value(QLatin1String(key))); };
    const auto array = [&](const char *key) { return totals.value(QLatin1String(key)).toArray(); };
    const auto rows = [&](const char *id) { return page.tables.value(QLatin1String(id)); };

    for (const char *const key : {"frames", "faces", "female", "male", "unknownGender",
             "allDetermined", "allRestricted", "sensorErrors", "errors", "restarts"}) {
        const QString figure = page.figures.value(QLatin1String("figure-") + QLatin1String(key));
        QVERIFY2(!figure.isEmpty(), key);
        QCOMPARE(numberOf(figure), number(key));
    }
    QCOMPARE(numberOf(page.figures.value(QStringLiteral("figure-silences"))),
        numberOf(
            totals.value(QStringLiteral("silences")).toObject().value(QStringLiteral("count"))));
    QCOMPARE(numberOf(page.figures.value(QStringLiteral("figure-unmatched"))), number("unmatched"));

    const QJsonArray hours = array("facesByHour");
    QCOMPARE(hours.size(), 24);
    for (int hour = 0; hour < hours.size(); ++hour) {
        QVector<qint64> genders;
        for (const QString &gender : Genders) {
            const QVector<qint64> ages = agesOf(hours.at(hour), gender);
            genders << withSum(ages).last();
            QCOMPARE(numbersOf(page.tables.value(QLatin1String("table-hours-") + gender),
                         hourName(hour), Ages.size() + 1),
                withSum(ages));
        }
        QCOMPARE(numbersOf(rows("table-hours"), hourName(hour), 4), withSum(genders));

        QVector<qint64> days;
        const QJsonArray weekdays = array("facesByWeekday");
        for (const QJsonValue &day : weekdays)
            days << numberOf(day.toArray().at(hour));
        QCOMPARE(days.size(), 7);
        QCOMPARE(numbersOf(rows("table-week"), hourName(hour), 8), withSum(days));

        QVector<qint64> sequences;
        const QJsonArray all = array("sequences");
        for (const QJsonValue &sequence : all)
            sequences << numberOf(
                sequence.toObject().value(QStringLiteral("determinedByHour")).toArray().at(hour));
        QCOMPARE(
            numbersOf(rows("table-sequences"), hourName(hour), all.size() + 1), withSum(sequences));
    }

    for (const char *const what : {"facesByAge", "unmatchedByAge"}) {
        const bool isFaces = qstrcmp(what, "facesByAge") == 0;
        const Rows ages = rows(isFaces ? "table-ages" : "table-unmatched");
        const QJsonValue audience = totals.value(QLatin1String(what));
        QCOMPARE(ages.isEmpty(), number(isFaces ? "faces" : "unmatched") < 1);
        for (int band = 0; band < ages.size(); ++band) {
            QVector<qint64> genders;
            for (const QString &gender : Genders)
                genders << agesOf(audience, gender).at(band);
            QCOMPARE(numbersOf(ages, ages.at(band).constFirst(), 4), withSum(genders));
        }
    }

    const Rows heldBack = rows("table-held-back");
    const QJsonArray sequences = array("sequences");
    QCOMPARE(heldBack.size(), number("allDetermined") == 0 ? 0 : sequences.size());
    for (int i = 0; i < heldBack.size(); ++i) {
        const QJsonObject sequence = sequences.at(i).toObject();
        const QString key = QString::number(sequence.value(QStringLiteral("number")).toInt());
        const auto counted = [&](const char *counts) {
            return qMax<qint64>(
                0, numberOf(totals.value(QLatin1String(counts)).toObject().value(key)));
        };
        QVERIFY(heldBack.at(i).constFirst().startsWith(QLatin1Char('#') + key));
        QCOMPARE(numberOf(heldBack.at(i).at(1)), counted("determined"));
        QCOMPARE(numberOf(heldBack.at(i).at(2)), counted("restricted"));
        QCOMPARE(counted("determined"), numberOf(sequence.value(QStringLiteral("determined"))));
        QCOMPARE(counted("restricted"), numberOf(sequence.value(QStringLiteral("restricted"))));
    }

    for (const bool isSensor : {true, false}) {
        const QJsonArray messages = array(isSensor ? "sensorErrorMessages" : "errorMessages");
        const QString id = QLatin1String(isSensor ? "table-sensor-errors" : "table-plugin-errors");
        const Rows listed = page.tables.value(id);
        QCOMPARE(listed.size(), messages.size());
        for (int i = 0; i < listed.size(); ++i) {
            const QJsonObject message = messages.at(i).toObject();
            QCOMPARE(listed.at(i).at(1), message.value(QStringLiteral("message")).toString());
            QCOMPARE(
                numberOf(listed.at(i).at(4)), numberOf(message.value(QStringLiteral("count"))));
            const QVector<qint64> byHour
                = listOf(message.value(QStringLiteral("byHour")).toArray());
            for (int hour = 0; hour < byHour.size(); ++hour) {
                const QVector<qint64> row = numbersOf(
                    page.tables.value(id + QLatin1String("-hours")), hourName(hour), listed.size());
                QCOMPARE(row.at(i), byHour.at(hour));
            }
        }
    }

    const Rows process = rows("table-process");
    QCOMPARE(numberOf(process.at(0).at(1)), number("starts"));
    QCOMPARE(numberOf(process.at(1).at(1)), number("restarts"));
    QCOMPARE(numberOf(process.at(2).at(1)), number("stops"));
    const QJsonArray longest = totals.value(QStringLiteral("silences"))
                                   .toObject()
                                   .value(QStringLiteral("longest"))
                                   .toArray();
    QCOMPARE(rows("table-silences").size(), longest.size());
    for (int i = 0; i < longest.size(); ++i) {
        const QStringList silence = rows("table-silences").at(i);
        const QJsonObject expected = longest.at(i).toObject();
        const auto time = [&](const char *key) {
            return expected.value(QLatin1String(key))
                .toString()
                .left(19)
                .replace(QLatin1Char('T'), QLatin1Char(' '));
        };
        QCOMPARE(silence.at(0).left(19), time("from"));
        QCOMPARE(silence.at(1).left(19), time("to"));
        QCOMPARE(silence.at(2) == QLatin1String("stopped"),
            expected.value(QStringLiteral("stopped")).toBool());
    }

    const QJsonArray days = array("days");
    QCOMPARE(rows("table-days").size(), days.size());
    for (int i = 0; i < days.size(); ++i) {
        const QStringList day = rows("table-days").at(i);
        const QJsonObject expected = days.at(i).toObject();
        QCOMPARE(day.at(0), expected.value(QStringLiteral("date")).toString());
        int column = 0;
        for (const char *const key :
            {"frames", "faces", "determined", "restricted", "sensorErrors"})
            QCOMPARE(numberOf(day.at(++column)), numberOf(expected.value(QLatin1String(key))));
    }
    QCOMPARE(rows("table-coverage").isEmpty(), !arguments.contains(QLatin1String("--stage")));
}

void tst_Hvcp2Report::tables_data()
{
    addReports();
}

/// However the table for spreadsheets divides a figure, the parts are the whole of it.
void tst_Hvcp2Report::tables()
{
    QFETCH(QString, arguments);

    const QStringList command
        = QStringList(QStringLiteral("report")) + arguments.split(QLatin1Char(' '));
    const Result json = run(command + QStringList(QStringLiteral("--json")));
    const QJsonObject totals = QJsonDocument::fromJson(json.output.toUtf8())
                                   .object()
                                   .value(QStringLiteral("totals"))
                                   .toObject();
    const Result csv = run(command + QStringList(QStringLiteral("--csv")));
    QCOMPARE(csv.status, json.status);
    const QHash<QString, qint64> sums = sumsOf(csv.output);
    const auto verify = [&](const char *figure, const char *key, const QStringList &parts) {
        const qint64 all = qMax<qint64>(0, numberOf(totals.value(QLatin1String(key))));
        QCOMPARE(sums.value(QLatin1String(figure)), all);
        for (const QString &part : parts)
            QCOMPARE(sums.value(QLatin1String(figure) + QLatin1Char(' ') + part), all);
    };
    const QString date = QStringLiteral("date");
    const QStringList requests{date, QStringLiteral("sequence"), QStringLiteral("hour sequence")};
    verify("frames", "frames", {date});
    verify("faces", "faces",
        {date, QStringLiteral("hour gender ageFrom"), QStringLiteral("weekday hour")});
    verify("unmatched", "unmatched", {QStringLiteral("gender ageFrom")});
    verify("determined", "allDetermined", requests);
    verify("restricted", "allRestricted", requests);
    verify("sensorErrors", "sensorErrors", {date});
    for (const char *const figure : {"framesWithFaces", "errors", "starts", "restarts", "stops"})
        verify(figure, figure, {});
}

void tst_Hvcp2Report::structure_data()
{
    addReports();
}

/// One file that a browser, a screen reader and a printer can do with.
void tst_Hvcp2Report::structure()
{
    QFETCH(QString, arguments);

    const QString html = page(arguments);
    const PageContent page = readPage(html);
    QCOMPARE(page.error, QString());
    QVERIFY(html.startsWith(QLatin1String("<!DOCTYPE html>")));
    for (const char *const element : {"script", "link", "img", "iframe", "object", "image", "use"})
        QVERIFY2(!page.elements.contains(QLatin1String(element)), element);
    static const QRegularExpression elsewhere(
        QStringLiteral("(src|href)=\"[^#]|@import|url\\([^#]|https?://(?!www\\.w3\\.org/)"));
    QVERIFY2(!html.contains(elsewhere), qPrintable(elsewhere.match(html).captured()));
    // Browsers take the style of a page as it is, those of its pictures as XML.
    QVERIFY(!page.style.contains(QRegularExpression(QStringLiteral("[<>&\"]"))));

    QCOMPARE(QSet<QString>(page.ids.cbegin(), page.ids.cend()).size(), page.ids.size());
    for (const QString &reference : page.references)
        QVERIFY2(page.ids.contains(reference), qPrintable(reference));
    QCOMPARE(page.elements.count(QStringLiteral("h1")), 1);
    for (int i = 0; i < page.elements.size(); ++i) {
        if (page.elements.at(i) == QLatin1String("svg"))
            QCOMPARE(page.elements.mid(i + 1, 2),
                QStringList({QStringLiteral("title"), QStringLiteral("desc")}));
    }
    QCOMPARE(page.elements.count(QStringLiteral("caption")), page.tables.size());
    QCOMPARE(page.headings.size(), page.tables.size());
    for (auto table = page.tables.cbegin(); table != page.tables.cend(); ++table) {
        for (const QStringList &row : *table)
            QCOMPARE(row.size(), page.headings.value(table.key()).size());
    }
    // Browsers end an element without content only by its end tag; in pictures they know both.
    static const QRegularExpression emptyElement(
        QStringLiteral("<(td|th|p|div|dd|dt|caption|h\\d|li|ul|a|section|figure|style)\\b[^>]*/>"));
    QVERIFY2(!html.contains(emptyElement), qPrintable(emptyElement.match(html).captured()));
}

void tst_Hvcp2Report::chartLabels_data()
{
    addReports();
}

/// None of them goes beyond its picture.
void tst_Hvcp2Report::chartLabels()
{
    QFETCH(QString, arguments);

    constexpr int LetterSize = 12; // in the style of the page
    int width = 0; // of the chart; 0: outside of one
    int labels = 0;
    QXmlStreamReader reader(page(arguments));
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isEndElement() && reader.name() == QLatin1String("svg"))
            width = 0;
        if (!reader.isStartElement())
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() == QLatin1String("svg")
            && attributes.value(QLatin1String("class")) == QLatin1String("chart"))
            width = attributes.value(QLatin1String("width")).toInt();
        if (reader.name() != QLatin1String("text") || width == 0)
            continue;
        ++labels;
        const int x = attributes.value(QLatin1String("x")).toInt();
        const QStringRef anchor = attributes.value(QLatin1String("text-anchor"));
        const QString text = reader.readElementText();
        const int length = widthOf(columnsOf(text), LetterSize);
        const int before = anchor == QLatin1String("end") ? length
            : anchor == QLatin1String("middle")           ? length / 2
                                                          : 0;
        QVERIFY2(x - before >= 0, qPrintable(text));
        QVERIFY2(x - before + length <= width + 1, qPrintable(text)); // a half is rounded
    }
    QVERIFY(labels > 0);
}

/// As WCAG 2 has it: 4.5 for text, 3 for the parts of a picture.
void tst_Hvcp2Report::contrasts()
{
    const QString style = readPage(page(QStringLiteral("nothing.out"))).style;
    const QStringList schemes = style.split(QStringLiteral("@media screen"));
    QCOMPARE(schemes.size(), 2);
    for (const QString &scheme : schemes) {
        const auto color = [&](const QString &name) {
            const QRegularExpression definition(QStringLiteral("--%1: (#[0-9a-f]{6});").arg(name));
            return definition.match(scheme).captured(1);
        };
        for (const char *const ground : {"page", "card"}) {
            const QString behind = color(QLatin1String(ground));
            QVERIFY(!behind.isEmpty());
            for (const char *const text : {"ink", "muted", "accent"})
                QVERIFY2(contrast(color(QLatin1String(text)), behind) >= 4.5, text);
        }
        for (const char *const part : {"female", "male", "unknown", "sent", "held", "accent"})
            QVERIFY2(
                contrast(color(QLatin1String(part)), color(QStringLiteral("card"))) >= 3, part);
    }
}

void tst_Hvcp2Report::browser_data()
{
    addReports();
}

/// A browser finds what is in the page, and says nothing about it.
void tst_Hvcp2Report::browser()
{
    QFETCH(QString, arguments);

    const QString browser = QStandardPaths::findExecutable(QStringLiteral("chromium"));
    if (browser.isEmpty())
        QSKIP("There is no Chromium.");
    const PageContent expected = readPage(page(arguments));
    const QUrl file = QUrl::fromLocalFile(m_directory.filePath(QStringLiteral("page.html")));
    QProcess process;
    process.start(browser,
        {QStringLiteral("--headless"), QStringLiteral("--no-sandbox"),
            QStringLiteral("--disable-gpu"), QStringLiteral("--enable-logging=stderr"),
            QStringLiteral("--user-data-dir=") + m_directory.filePath(QStringLiteral("browser")),
            QStringLiteral("--dump-dom"), file.toString()});
    QVERIFY(process.waitForFinished(120000));
    const QString dom = QString::fromUtf8(process.readAllStandardOutput());
    QVERIFY(!QString::fromUtf8(process.readAllStandardError()).contains(QLatin1String("CONSOLE")));

    QStringList cells;
    static const QRegularExpression cell(QStringLiteral("<(td|th|dd)(?: [^>]*)?>([^<]*)</\\1>"));
    auto found = cell.globalMatch(dom);
    while (found.hasNext()) {
        QString text = found.next().captured(2);
        text.replace(QLatin1String("&lt;"), QLatin1String("<"))
            .replace(QLatin1String("&gt;"), QLatin1String(">"))
            .replace(QLatin1String("&amp;"), QLatin1String("&"));
        cells << text;
    }
    QVERIFY(!cells.isEmpty());
    QCOMPARE(cells, expected.cells);
}

void tst_Hvcp2Report::refused_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");

    QTest::newRow("no frames") << "report"
                               << "FRAMES are needed: a log directory, files or -.";
    QTest::newRow("a file that does not exist") << "report none.txt"
                                                << "none.txt: no such file";
    QTest::newRow("a silence that is no number") << "report nothing.out --silence long"
                                                 << "--silence: \"long\" is no number of seconds";
    QTest::newRow("no silence") << "report nothing.out --silence 0"
                                << "--silence: \"0\" is no number of seconds";
    QTest::newRow("a screen without a stage") << "report nothing.out --screen 2"
                                              << "--stage FILE is needed.";
    QTest::newRow("settings without a stage") << "report nothing.out --settings concurrent=2"
                                              << "--stage FILE is needed.";
    QTest::newRow("a stage that does not exist") << "report nothing.out --stage none.json"
                                                 << "none.json: no such file";
    QTest::newRow("a page that is a folder") << "report visitors.out -o ."
                                             << ".: is not a file";
}

void tst_Hvcp2Report::refused()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);

    const Result result = run(arguments.split(QLatin1Char(' ')));
    QCOMPARE(result.error, QStringLiteral("hvcp2 report: %1\n").arg(error));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, BadUse);
}

void tst_Hvcp2Report::silence()
{
    const auto count = [](const char *seconds) {
        const Result result = run({QStringLiteral("report"), QStringLiteral("visitors.out"),
            QStringLiteral("--json"), QStringLiteral("--silence"), QLatin1String(seconds)});
        return QJsonDocument::fromJson(result.output.toUtf8())
            .object()[QStringLiteral("totals")]
            .toObject()[QStringLiteral("silences")]
            .toObject()[QStringLiteral("count")]
            .toInt();
    };
    QCOMPARE(count("3"), 2);
    QCOMPARE(count("4"), 1);
    QCOMPARE(count("3594"), 0);
}

void tst_Hvcp2Report::roundSteps_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<qint64>("step");

    QTest::newRow("nothing") << Q_INT64_C(0) << Q_INT64_C(1);
    QTest::newRow("as many as steps") << Q_INT64_C(4) << Q_INT64_C(1);
    QTest::newRow("one more") << Q_INT64_C(5) << Q_INT64_C(2);
    QTest::newRow("fives") << Q_INT64_C(20) << Q_INT64_C(5);
    QTest::newRow("tens") << Q_INT64_C(21) << Q_INT64_C(10);
    QTest::newRow("large") << Q_INT64_C(604800) << Q_INT64_C(200000);
    QTest::newRow("largest") << std::numeric_limits<qint64>::max() << Q_INT64_C(100000000000000000);
}

void tst_Hvcp2Report::roundSteps()
{
    QFETCH(qint64, value);

    QTEST(roundStep(value, 4), "step");
}

void tst_Hvcp2Report::groupedNumbers_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("text"); // with '_' for the blank

    QTest::newRow("zero") << Q_INT64_C(0) << "0";
    QTest::newRow("three digits") << Q_INT64_C(999) << "999";
    QTest::newRow("four digits") << Q_INT64_C(1000) << "1_000";
    QTest::newRow("seven digits") << Q_INT64_C(1234567) << "1_234_567";
}

void tst_Hvcp2Report::groupedNumbers()
{
    QFETCH(qint64, number);
    QFETCH(QString, text);

    QCOMPARE(groupedNumber(number), text.replace(QLatin1Char('_'), QChar(0x202f)));
}

QTEST_GUILESS_MAIN(tst_Hvcp2Report)

#include "tst_hvcp2report.moc"
