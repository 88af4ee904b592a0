#include "detection/LayoutBound.h"
#include "detection/SensorOutputParser.h"
#include "monitor/KrTextItem_Private.h"
#include "monitor/OfflineTextDocument.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QtTest>

#include <random>

using namespace PluginKrHvcP2;

namespace {

constexpr int GenerousMs = 30000; // the sanitizers take fifty times as long as the program

QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

void ignoreMessage(
    QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString & /*message*/)
{ }

SensorFrame parse(const QString &chunk)
{
    return SensorOutputParser::parse(chunk, QDateTime());
}

/// How long the panel and the log take for the table of a chunk.
qint64 layoutTime(const QString &html)
{
    QElapsedTimer timer;
    timer.start();
    Private::KrTextItem_Private item;
    item.setTextWidth(512);
    item.setHtml(html);
    item.document()->idealWidth();
    item.document()->size();
    OfflineTextDocument report;
    report.setHtml(html);
    report.toPlainText();
    return timer.elapsed();
}

/// The tokens of a libFuzzer dictionary, by what they are good for.
struct Dictionary
{
    QStringList elements; // "<b>"
    QStringList attributes; // "width="
    QStringList properties; // "padding:"
    QStringList others;

    static Dictionary read(const QString &fileName)
    {
        Dictionary dictionary;
        QFile file(fileName);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            return dictionary;
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            if (line.startsWith(QLatin1Char('"')))
                dictionary.add(unescaped(line.mid(1, line.size() - 2)));
        }
        return dictionary;
    }

private:
    static QString unescaped(const QString &token)
    {
        QByteArray bytes;
        for (int i = 0; i < token.size(); ++i) {
            if (token.at(i) != QLatin1Char('\\')) {
                bytes += token.at(i).toLatin1();
            } else if (token.at(++i) == QLatin1Char('x')) {
                bytes += QByteArray::fromHex(token.mid(i + 1, 2).toLatin1());
                i += 2;
            } else {
                bytes += token.at(i).toLatin1();
            }
        }
        return QString::fromUtf8(bytes);
    }

    void add(const QString &token)
    {
        static const QRegularExpression element("^<[a-z0-9]+>$"_s);
        static const QRegularExpression property("^[a-z-]+:$"_s);
        if (element.match(token).hasMatch())
            elements.append(token);
        else if (property.match(token).hasMatch())
            properties.append(token);
        else if (token.size() > 2 && token.endsWith(QLatin1Char('=')))
            attributes.append(token);
        else
            others.append(token);
    }
};

/// Chunks of markup of which each has some pieces, many times; the same for the same seed.
class ChunkGenerator
{
public:
    ChunkGenerator(const Dictionary &dictionary, unsigned seed)
        : m_dictionary(dictionary)
        , m_random(seed)
    { }

    QString chunk()
    {
        // Many chunks have to pass, and the others have to be close to those.
        m_numberBits = 4 + atMost(24);
        m_oddOneIn = 8 << atMost(8);
        QString text = any(labels());
        for (int runs = 1 + atMost(3); runs > 0; --runs) {
            QString run;
            for (int pieces = 1 + atMost(4); pieces > 0; --pieces)
                run += piece();
            text += run.repeated(1 << atMost(9));
        }
        return text;
    }

private:
    int atMost(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    bool isOdd() { return atMost(m_oddOneIn) == 0; }
    const QString &any(const QStringList &list) { return list.at(atMost(list.size())); }
    const QString &anyOf(const QStringList &costly, const QStringList &all)
    {
        return atMost(3) == 0 ? any(all) : any(costly);
    }

    static const QStringList &labels()
    {
        static const QStringList list{"Failed "_s, "Index:0\t"_s, "Index:x\ty "_s,
            "Face Direction\tLR:1 "_s, "Face result count:"_s};
        return list;
    }

    QString piece()
    {
        switch (atMost(8)) {
        case 0:
            return QLatin1Char('\n') + any(labels());
        case 1:
            return isOdd() ? any(m_dictionary.others) : "x "_s;
        case 2:
            return QString(1 << atMost(7), QLatin1Char('x'));
        case 3:
            return QString(element()).replace(0, 1, "</"_s);
        default:
            return tag();
        }
    }

    const QString &element()
    {
        static const QStringList costly{"<table>"_s, "<table>"_s, "<tr>"_s, "<td>"_s, "<td>"_s,
            "<p>"_s, "<div>"_s, "<span>"_s, "<li>"_s, "<ul>"_s, "<pre>"_s, "<img>"_s};
        return anyOf(costly, m_dictionary.elements);
    }

    QString tag()
    {
        QString text = element();
        text.chop(1);
        for (int i = atMost(3); i > 0; --i)
            text += QLatin1Char(' ') + (atMost(2) == 0 ? attribute() : style());
        return text + QLatin1Char('>');
    }

    QString attribute()
    {
        static const QStringList costly{"border="_s, "cellpadding="_s, "cellspacing="_s,
            "colspan="_s, "rowspan="_s, "width="_s, "height="_s, "align="_s};
        const QString name = anyOf(costly, m_dictionary.attributes);
        return name + value(QString());
    }

    QString style()
    {
        static const QStringList costly{"padding:"_s, "margin:"_s, "border-width:"_s,
            "font-size:"_s, "line-height:"_s, "text-indent:"_s, "float:"_s, "white-space:"_s};
        static const QStringList units{"px"_s, "px"_s, "pt"_s, "%"_s};
        QString text = "style='"_s;
        for (int i = 1 + atMost(2); i > 0; --i) {
            const QString name = anyOf(costly, m_dictionary.properties);
            text += name + value(any(units)) + QLatin1Char(';');
        }
        return text + QLatin1Char('\'');
    }

    QString value(const QString &unit)
    {
        static const QStringList words{"left"_s, "right"_s, "pre"_s, "nowrap"_s, "always"_s};
        if (isOdd())
            return any(m_dictionary.others);
        if (atMost(4) == 0)
            return any(words);
        return QString::number((1LL << (m_numberBits - atMost(4))) - 1) + unit;
    }

    const Dictionary &m_dictionary;
    std::mt19937 m_random;
    int m_numberBits = 1;
    int m_oddOneIn = 1;
};

} // namespace

class tst_LayoutBound : public QObject
{
    Q_OBJECT

private slots:
    void sensible_data();
    void sensible();
    void unbounded_data();
    void unbounded();
    void normalFrames();
    void plainText_data();
    void plainText();
    void plainTextIsBounded_data();
    void plainTextIsBounded();
    void whatIsAdmittedIsLaidOut();
};

void tst_LayoutBound::sensible_data()
{
    QTest::addColumn<QString>("chunk");

    const auto row = [](const char *name, const QString &chunk) { QTest::newRow(name) << chunk; };
    row("nothing", QString());
    row("no markup", "Failed to read 12345678 &amp; 'x'"_s);
    row("emphasis", "Failed <b>to</b> <i>read</i>"_s);
    row("an unclosed element", "Failed <b>to"_s);
    row("a colour by name", "Failed <span style=\"color:red\">x</span>"_s);
    row("a colour by number", "Failed <span style='color: #00ff3e;'>x</span>"_s);
    row("a colour that looks like an exponent", "Failed <font color=\"#3e7000\">x</font>"_s);
    row("a colour by function", "Failed <span style=\"color:rgb(255, 255, 0)\">x</span>"_s);
    row("a font", "Failed <font size=\"+2\" face='Yu Gothic' color=lime>x</font>"_s);
    row("a font in a style", "Failed <b style=\"font: 12px 'Yu Gothic'; color:red\">x</b>"_s);
    row("a weight", "Failed <span style=\"font-weight:700\">x</span>"_s);
    row("a line break", "Failed a<br>b<br/>c<br />"_s);
    row("a comparison", "Failed a < b"_s);
    row("a comparison of numbers", "Failed 5 < 17 and 8 <= 9"_s);
    row("a shift and an arrow", "Failed 1 << 4 <- 3 <3"_s);
    row("an apostrophe outside of a tag", "Failed <b>isn't</b> it"_s);
    row("a large number outside of a tag", "Failed <b>at</b> 123456789012"_s);
    row("an entity outside of a tag", "Failed <b>a</b> &lt; &#65;"_s);
    row("a small table",
        "Failed <table border=1 cellpadding=\"2\"><tr><th>a</th><td width='50%'>b</td></tr></table>"_s);
    row("an image", "Failed <img src=\"icon.png\" width=32 height=32 alt='x'>"_s);
    row("a large image", "Failed <img src=\"//server/share/icon.png\" width=1024 height=768>"_s);
    row("a link", "Failed <a href=\"https://www.example.com/help?page=7\">help</a>"_s);
    row("a list", "Failed <ul><li>a</li><li>b</li></ul>"_s);
    row("a ruler", "Failed a<hr width=\"90%\">b"_s);
    row("a comment", "Failed a<!-- b -->c"_s);
    row("capitals", "Failed <SPAN STYLE=\"COLOR:RED\">x</SPAN>"_s);
    row("an unknown element", "Failed <unknown>x</unknown>"_s);
    row("a label and a value", "<b>One</b>\t<i>\nAge\t<img src=\"x\"> Age:3"_s);
    row("closing tags of the table", "Failed x</span></td></tr></table>\nFailed y"_s);
    row("markup in a face", "Index:0\tX:1 Y:2 <b>Size:3</b> Confidence:4\nGender\t<b>x"_s);
    row("a table of more rows and columns",
        "Failed <table>"_s + "<tr><td>a</td><td colspan=2><b>b</b></td></tr>"_s.repeated(20)
            + "</table>"_s);
    row("three tables", "Failed "_s + "<table><tr><td>"_s.repeated(3));
    row("many nested elements", "Failed "_s + "<div>"_s.repeated(500));
    row("a word as long as may be", "Failed "_s + QString(4096, QLatin1Char('x')));
    row("a long line of words", "Failed "_s + "word "_s.repeated(20000));
    row("a long line that is no row", QString(1000000, QLatin1Char('x')));
    row("markup in lines that are no rows", "<table>"_s.repeated(3000) + "\n<td style='"_s);
    row("as much as passes at once, nested",
        "Failed "_s + "<table><tr><td>"_s.repeated(3)
            + QString("x"_s.repeated(4000) + QLatin1Char(' ')).repeated(16));
    row("as much as passes at once, font",
        "Failed <p style='font-size:40pt'>"_s + "x "_s.repeated(24000));
    row("as much as passes at once, padding",
        "Failed <table cellpadding=80 cellspacing=80><tr><td>"_s + "\nFailed a"_s.repeated(140));
}

void tst_LayoutBound::sensible()
{
    QFETCH(QString, chunk);
    const SensorFrame frame = parse(chunk);
    QVERIFY(isLayoutBounded(frame));
    const qint64 time = layoutTime(frame.html);
    QVERIFY2(time < GenerousMs, qPrintable(QString::number(time)));
}

void tst_LayoutBound::unbounded_data()
{
    QTest::addColumn<QString>("chunk");

    const auto row = [](const char *name, const QString &chunk) { QTest::newRow(name) << chunk; };
    const auto tag = [](const char *name, const QString &text) {
        QTest::newRow(name) << QString("Failed "_s + text + "x"_s);
    };

    const QString table = "<table><tr><td>"_s;
    row("nested tables", "Failed "_s + table.repeated(20));
    row("one table too many", "Failed "_s + table.repeated(4));
    row("nested tables in capitals", "Failed "_s + table.toUpper().repeated(20));
    row("nested tables, one a line", QString("Failed "_s + table + QLatin1Char('\n')).repeated(20));
    row("nested tables in labels", QString(table + "\tx\n"_s).repeated(20));
    row("nested tables that only joining makes", "Age\t"_s + "<ta ble> <tr> <td> "_s.repeated(20));
    row("nested tables with other elements between",
        "Failed "_s + "<table><tr><td><ul><li><div>"_s.repeated(20));
    row("nested tables with blanks", "Failed "_s + "< table ><tr><td>"_s.repeated(20));
    row("nested tables with a slash", "Failed "_s + "<table/ ><tr><td>"_s.repeated(20));
    row("nested tables by entity", "Failed "_s + "<&#116;able><tr><td>"_s.repeated(20));
    row("nested tables with quoted names", "Failed "_s + "<\"table\"><tr><td>"_s.repeated(20));
    row("nested tables that only stray cells make", "Failed "_s + "<td></tr>"_s.repeated(64));
    row("nested tables in their heads", "Failed "_s + "<thead><td>"_s.repeated(64));
    row("nested tables in their captions", "Failed "_s + "<CAPTION><th>"_s.repeated(64));
    row("nested tables in rows that are closed at once",
        "Failed "_s + "</tr><tr/><td>"_s.repeated(20));
    row("nested elements", "Failed "_s + "<div>"_s.repeated(10000));
    row("too many tags", "Failed "_s + "<b>x</b>"_s.repeated(300));
    row("too much text with markup", "Failed <b>"_s + "word "_s.repeated(14000));

    tag("padding", "<td style=\"padding:2000000000px\">"_s);
    tag("padding without quotes", "<td style=padding:2000000000px>"_s);
    tag("padding in capitals", "<TD STYLE='PADDING:2000000000PX'>"_s);
    tag("padding with an exponent", "<td style=\"padding:3e7px\">"_s);
    tag("padding with a large exponent", "<td style=\"padding:3E7px\">"_s);
    tag("padding with an exponent behind the point", "<table cellpadding=3.e7><tr><td>"_s);
    tag("endless padding", "<td style=\"padding:infpx\">"_s);
    tag("padding that is no number", "<td style=\"padding:NaNpx\">"_s);
    tag("padding by entity", "<td style=\"padding:3&#48;000000px\">"_s);
    tag("padding by escape", "<td style=\"padding:\\33 0000000px\">"_s);
    tag("cellpadding", "<table cellpadding=30000000><tr><td>"_s);
    tag("cellpadding with zeros before it", "<table cellpadding=000030000000><tr><td>"_s);
    tag("cellpadding with an exponent", "<table cellpadding='3e7'><tr><td>"_s);
    tag("cellpadding below 0", "<table cellpadding=-30000000><tr><td>"_s);
    tag("endless cellpadding", "<table cellpadding=+inf><tr><td>"_s);
    tag("cellpadding that is no number", "<table cellpadding=nan><tr><td>"_s);
    tag("cellpadding by entity", "<table cellpadding=&#51;0000000><tr><td>"_s);
    tag("cellspacing", "<table cellspacing=30000000><tr><td>"_s);
    tag("a float's margin", "<table style=\"margin:30000000px;float:left\"><tr><td>"_s);
    tag("a margin", "<div style=\"margin:9999999px\">"_s);
    tag("a margin in fonts", "<p style=\"font-size:999px;margin:9999em\">"_s);
    tag("a line height in fonts", "<p style=\"font-size:999px;line-height:999\">"_s);
    tag("an indent", "<ul style=\"-qt-list-indent:9\"><li>"_s);
    tag("many columns", "<td colspan=4095>"_s);
    tag("a length before a comment", "<td style=\"padding:30000000px\"><!-- -->"_s);
    tag("a length behind a comment", "<!-- > --><td style=\"padding:30000000px\">"_s);
    tag("a length behind a '<'", "1 < 2 <td style=\"padding:30000000px\">"_s);
    tag("a style sheet", "<style>td { padding:30000000px }</style>"_s);
    tag("a style sheet behind blanks", "< STYLE>td { padding:30000000px }</style>"_s);
    tag("a length behind a quote in a word", "<td a=b\" style=padding:30000000px \">"_s);
    tag("a quote that is not closed", "<td a=\" style=padding:9px>"_s);
    tag("a '>' in a value", "<td a=\"> style=padding:30000000px\">"_s);
    tag("a quote behind a value", "<td a=\"b\"\" style=\"padding:30000000px\">"_s);
    tag("a quote without a name", "<td \"a\">"_s);
    tag("a quote over two cells", "<td a='\nFailed ' style='padding:30000000px'>"_s);
    row("a quote over a label and its value", "<td a='\t' style='padding:30000000px'>"_s);
    row("a number that only joining makes", "Age\t<table cellpadding=3 0 0 0 0 0 0 0> <td>"_s);

    tag("many fonts' worth of lines",
        "<span style=\"font-size:9999px\">"_s + QString(1000, QLatin1Char('x')) + QLatin1Char(' '));
    tag("many paragraphs' margins", "<p style=\"margin:9999px\">x</p>"_s.repeated(100));
    tag("many columns in many rows",
        "<td colspan=999>"_s.repeated(9) + "\nFailed x"_s.repeated(100));
    row("many cells in many rows", "Failed "_s + "<td>"_s.repeated(100) + "\n\r"_s.repeated(200));
    row("a long word", "Failed "_s + QString(1000000, QLatin1Char('x')));
    row("a long word that only joining makes", "Age\t"_s + "x "_s.repeated(5000));
    row("a long word of no-break spaces",
        "Failed x"_s + QString(5000, QChar(QChar::Nbsp)) + QLatin1Char('x'));
}

void tst_LayoutBound::unbounded()
{
    QFETCH(QString, chunk);
    QVERIFY(!isLayoutBounded(parse(chunk)));
}

void tst_LayoutBound::normalFrames()
{
    const QString face = "Index:0\tX:320 Y:240 Size:120 Confidence:800\n"
                         "Face Direction\tLR:5 UD:-3 Roll:1 Confidence:700\n"
                         "Age\tAge:34 Confidence:500\n"
                         "Gender\tGender:Female Confidence:900 *\n"_s;
    for (const int faces : {0, 1, 35, 1000})
        QVERIFY(isLayoutBounded(parse(face.repeated(faces))));
    for (const int faces : {1, 35})
        QVERIFY(isLayoutBounded(
            parse("Failed <font size=4 color=red>x</font>\n"_s + face.repeated(faces))));
}

void tst_LayoutBound::plainText_data()
{
    QTest::addColumn<QString>("chunk");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("lines") << "a\nb"_s
                           << "a\nb"_s;
    QTest::newRow("blanks around lines go") << " a \r\n\tb\t\n"_s
                                            << "a\nb"_s;
    QTest::newRow("blanks within lines stay") << "a\tb  c"_s
                                              << "a\tb  c"_s;
    QTest::newRow("empty lines go") << "\n\na\n\n \r\nb"_s
                                    << "a\nb"_s;
    QTest::newRow("end prompts go") << "a\nPRESS space key to end: x\nb"_s
                                    << "a\nb"_s;
    QTest::newRow("an end prompt behind a blank is a line") << "a\n Press Space Key to end:"_s
                                                            << "a\nPress Space Key to end:"_s;
    QTest::newRow("markup stays") << "Failed <b>&lt;\n<td x='"_s
                                  << "Failed <b>&lt;\n<td x='"_s;
}

void tst_LayoutBound::plainText()
{
    QFETCH(QString, chunk);
    QFETCH(QString, expected);
    QCOMPARE(SensorOutputParser::plainText(chunk), expected);
}

void tst_LayoutBound::plainTextIsBounded_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    const auto x = [](int count) { return QString(count, QLatin1Char('x')); };
    QTest::newRow("short lines") << "a\n<b>\n"_s
                                 << "a\n<b>\n"_s;
    QTest::newRow("the longest line") << QString(x(4096) + "\na"_s) << QString(x(4096) + "\na"_s);
    QTest::newRow("a longer line is broken") << x(4097) << QString(x(4096) + "\nx"_s);
    QTest::newRow("also behind another one")
        << QString("a\n"_s + x(4097)) << QString("a\n"_s + x(4096) + "\nx"_s);
    QTest::newRow("a line of many pieces")
        << x(9000) << QString(x(4096) + "\n"_s + x(4096) + "\n"_s + x(808));
    QTest::newRow("what is too much is cut")
        << "xyz\n"_s.repeated(1000000) << "xyz\n"_s.repeated(16384);
}

void tst_LayoutBound::plainTextIsBounded()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(boundedPlainText(text), expected);
}

void tst_LayoutBound::whatIsAdmittedIsLaidOut()
{
    const Dictionary dictionary = Dictionary::read(QFINDTESTDATA("../fuzz/markup.dict"));
    QVERIFY(!dictionary.elements.isEmpty() && !dictionary.attributes.isEmpty());
    QVERIFY(!dictionary.properties.isEmpty() && !dictionary.others.isEmpty());

    // A slow machine tries fewer.
    const QDeadlineTimer deadline(10000);
    int tried = 0;
    int admitted = 0;
    QStringList slow;
    qInstallMessageHandler(ignoreMessage); // Qt warns of many a value
    for (; tried < 2000 && !deadline.hasExpired(); ++tried) {
        const QString chunk = ChunkGenerator(dictionary, static_cast<unsigned>(tried)).chunk();
        const SensorFrame frame = parse(chunk);
        if (!isLayoutBounded(frame))
            continue;
        ++admitted;
        if (layoutTime(frame.html) >= GenerousMs)
            slow.append(chunk);
    }
    qInstallMessageHandler(nullptr);
    QCOMPARE(slow, QStringList());
    // Both sides of the line have been seen.
    QVERIFY2(admitted > tried / 10 && admitted < tried * 9 / 10,
        qPrintable(QStringLiteral("%1 of %2").arg(admitted).arg(tried)));
}

QTEST_MAIN(tst_LayoutBound)

#include "tst_layoutbound.moc"
