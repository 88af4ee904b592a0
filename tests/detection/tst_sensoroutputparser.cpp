#include "detection/SensorOutputParser.h"
#include "tests/support/Files.h"

#include <QRegularExpression>
#include <QTranslator>
#include <QVariantMap>
#include <QtTest>

using namespace PluginKrHvcP2;

namespace {

QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

QDateTime chunkTime()
{
    return {QDate(2018, 2, 1), QTime(9, 30, 0, 123), Qt::UTC};
}

SensorFrame parse(const QString &chunk)
{
    return SensorOutputParser::parse(chunk, chunkTime());
}

/// As the sensor controller makes text of what it has read.
SensorFrame parseBytes(const QByteArray &bytes)
{
    return parse(QString::fromUtf8(bytes.constData(), bytes.size()));
}

QString describe(const FaceResultItem &item)
{
    static const QStringList names{"none"_s, "box"_s, "direction"_s, "age"_s, "gender"_s};
    QStringList values;
    const QVariantMap map = item.value.toMap();
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        values.append(it.key() + "="_s + it.value().toString());
    if (map.isEmpty())
        values.append(item.value.toString());
    return "%1(%2)@%3%4"_s.arg(names.value(item.kind), values.join(QLatin1Char(' ')),
        QString::number(item.confidence), item.marked ? "*"_s : QString());
}

QString describe(const FaceResult &face)
{
    QStringList parts{"#%1"_s.arg(face.index)};
    for (int kind = 0; kind < 6; ++kind) {
        if (face.item(kind).isValid())
            parts.append(describe(face.item(kind)));
    }
    return parts.join(QLatin1Char(' '));
}

QString describe(const SensorFrame &frame)
{
    QStringList faces;
    for (const FaceResult &face : frame.faces)
        faces.append(describe(face));
    return faces.join("; "_s);
}

/// Whether it makes no difference that nobody sees the table of @p chunk.
bool isSameUnseen(const QString &chunk)
{
    const SensorFrame seen = parse(chunk);
    const SensorFrame unseen = SensorOutputParser::parseUnseen(chunk, chunkTime());
    return unseen.html.isEmpty() && unseen.markup.isEmpty() && describe(unseen) == describe(seen)
        && unseen.sizes == seen.sizes && unseen.directionValues == seen.directionValues
        && unseen.hasRows == seen.hasRows && unseen.errorSeen == seen.errorSeen
        && unseen.noFace == seen.noFace;
}

QString table(const QString &rows)
{
    return "<table>"_s + rows + "</table>"_s;
}

/// What holds for every frame, whatever the text was; empty when all is well.
QString brokenRule(const SensorFrame &frame)
{
    if (!frame.html.startsWith("<table>"_s) || !frame.html.endsWith("</table>"_s))
        return "the table is not closed"_s;
    if (frame.html.count("<tr>"_s) != frame.html.count("</tr>"_s))
        return "the rows are not balanced"_s;
    if (frame.sizes.size() != frame.faces.size()
        || frame.directionValues.size() != frame.faces.size())
        return "a face lacks its size or direction"_s;
    for (int i = 0; i < frame.faces.size(); ++i) {
        const FaceResult &face = frame.faces.at(i);
        if (face.index < 0 || !face.hasItems() || face.time != chunkTime())
            return "a face is not complete"_s;
        if (face.size() != frame.sizes.at(i)
            || face.directionValue() != frame.directionValues.at(i))
            return "sizes or directions are out of order"_s;
    }
    return {};
}

QByteArray readData(const QString &name)
{
    const QString path = "data/"_s + name;
    return KrTest::readFile(QFINDTESTDATA(path));
}

/// Stands for a catalogue of the host's language.
class FailureTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }

    QString translate(const char *context, const char *sourceText, const char *disambiguation,
        int n) const override
    {
        Q_UNUSED(context)
        Q_UNUSED(disambiguation)
        Q_UNUSED(n)
        const bool isKnown = qstrcmp(sourceText, "Failed to open COM port.") == 0;
        return isKnown ? "Der COM-Anschluss fehlt: %1"_s : QString();
    }
};

} // namespace

class tst_SensorOutputParser : public QObject
{
    Q_OBJECT

private slots:
    void wholeFrames_data();
    void wholeFrames();
    void html_data();
    void html();
    void faces_data();
    void faces();
    void flags_data();
    void flags();
    void valueTypes();
    void faceTimeAndLists();
    void translatedFailure();
    void nothingIsCarriedOver();
    void anyCut_data();
    void anyCut();
    void cutBetweenFaces();
    void oddBytes_data();
    void oddBytes();
    void manyFaces();
    void labels_data();
    void labels();
};

void tst_SensorOutputParser::wholeFrames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expectedFaces");
    QTest::addColumn<bool>("errorSeen");
    QTest::addColumn<bool>("noFace");

    QTest::newRow("one face")
        << "one-face"_s
        << "#0 box(Size=120 X=320 Y=240)@800 direction(DirectionValue=8 LR=5 Roll=1 UD=-3)@700"
           " age(34)@500 gender(2)@900*"_s
        << false << false;
    QTest::newRow("nobody") << "nobody"_s << QString() << false << true;
    QTest::newRow("no sensor") << "port-absent"_s << QString() << true << false;
    QTest::newRow("two frames in one chunk, a face without age and gender")
        << "two-frames"_s
        << "#0 box(Size=80 X=100 Y=200)@640 direction(DirectionValue=27 LR=-20 Roll=-2 UD=7)@610"
           " age(25)@310* gender(1)@420; "
           "#1 box(Size=140 X=520 Y=180)@910 direction(DirectionValue=0 LR=0 Roll=0 UD=0)@880"
           " age(7)@200 gender(2)@150; "
           "#2 box(Size=60 X=900 Y=300)@500 direction(DirectionValue=75 LR=45 Roll=10 UD=-30)@220; "
           "#0 box(Size=81 X=101 Y=201)@641 direction(DirectionValue=29 LR=-21 Roll=-3 UD=8)@611"
           " age(26)@311 gender(1)@421*"_s
        << false << false;
}

void tst_SensorOutputParser::wholeFrames()
{
    QFETCH(QString, name);
    QFETCH(QString, expectedFaces);
    QFETCH(bool, errorSeen);
    QFETCH(bool, noFace);
    const QByteArray text = readData(name + ".txt"_s);
    QVERIFY(!text.isEmpty());
    // One row a line in the file, for the reader's sake.
    const QString expectedHtml
        = QString::fromUtf8(readData(name + ".html"_s)).remove(QRegularExpression("[\r\n]"_s));

    // The line ends of both worlds say the same.
    for (const QByteArray &chunk : {text, QByteArray(text).replace('\n', "\r\n")}) {
        const SensorFrame frame = parseBytes(chunk);
        QCOMPARE(frame.html, expectedHtml);
        QCOMPARE(describe(frame), expectedFaces);
        QCOMPARE(frame.errorSeen, errorSeen);
        QCOMPARE(frame.noFace, noFace);
        QCOMPARE(brokenRule(frame), QString());
        QVERIFY(isSameUnseen(QString::fromUtf8(chunk)));
    }
}

void tst_SensorOutputParser::html_data()
{
    QTest::addColumn<QString>("chunk");
    QTest::addColumn<QString>("rows");

    const auto row = [](const char *name, const QString &chunk, const QString &rows) {
        QTest::newRow(name) << chunk << rows;
    };
    const QString closing = "<tr><td></td></tr>"_s;

    row("an empty chunk", QString(), QString());
    row("only line ends", "\n\n\n"_s, QString());
    row("a line of only CR", "\r"_s, "<tr></tr>"_s);
    row("a line of only blanks", "  \t "_s, "<tr></tr>"_s);
    row("empty CRLF lines", "\r\n\r\n"_s, "<tr></tr><tr></tr>"_s);
    row("CR alone ends no line", "One\tA\rTwo\tB"_s, "<tr><td>One</td><td></td></tr>"_s);

    row("the end prompt", "Press Space Key to end:"_s, QString());
    row("the end prompt in capitals", "PRESS SPACE KEY TO END:"_s, QString());
    row("the end prompt with text behind it", "Press Space Key to end: Failed \tx"_s, QString());
    row("the end prompt without its colon is a line", "Press Space Key to end"_s, "<tr></tr>"_s);
    row("the end prompt behind a blank is a line", " Press Space Key to end:"_s, "<tr></tr>"_s);
    row("the end prompt inside a line is a part of it", "One\tPress Space Key to end:"_s,
        "<tr><td>One</td><td></td></tr>"_s);

    const auto failure = [](const QString &text) -> QString {
        return R"(<tr><td><span style="color:red;font-weight:bold;">)"_s + text
            + "</span></td></tr>"_s;
    };
    row("a failure", "Failed to read."_s, failure("Failed to read."_s));
    row("a failure in odd case", "fAILED to read."_s, failure("fAILED to read."_s));
    row("a failure inside a line", "Read Failed badly"_s, failure("Read Failed badly"_s));
    row("blanks around a failure go", "  Failed to read. \r"_s, failure("Failed to read."_s));
    row("the port failure", "Failed to open COM port."_s, failure("Failed to open COM port."_s));
    row("the port failure in odd case shows the usual text", "FAILED TO OPEN com PORT.\r"_s,
        failure("Failed to open COM port."_s));
    row("the port failure with more text is like others", "Failed to OPEN COM port.."_s,
        failure("Failed to OPEN COM port.."_s));
    row("a failure wins over a face count", "Face result count:0 Failed x"_s,
        failure("Face result count:0 Failed x"_s));
    row("a failure wins over an index", "Index:0\tFailed X:1 Y:2 Size:3 Confidence:4"_s,
        failure("Index:0\tFailed X:1 Y:2 Size:3 Confidence:4"_s));
    row("a failure never closes a face", "Gender\tFailed x"_s, failure("Gender\tFailed x"_s));
    row("no failure without a blank behind the word", "Failed\tx"_s,
        "<tr><td>Failed</td><td></td></tr>"_s);
    row("no failure when trimming takes the blank", "Failed "_s, "<tr></tr>"_s);

    const auto count = [](const QString &colour, const QString &text) -> QString {
        return R"(<tr><td><span style="color:)"_s + colour + R"(;">)"_s + text
            + "</span></td></tr>"_s;
    };
    row("a face count", "Face result count:2"_s, count("white"_s, "Face result count:2"_s));
    row("a face count of 0", "Face result count:0"_s, count("orange"_s, "Face result count:0"_s));
    row("a face count of 0 in odd case", "FACE Result COUNT:0"_s,
        count("orange"_s, "FACE Result COUNT:0"_s));
    row("a negative face count", "Face result count:-1"_s,
        count("orange"_s, "Face result count:-1"_s));
    row("a face count of letters", "Face result count:many"_s,
        count("orange"_s, "Face result count:many"_s));
    row("a face count beyond the range", "Face result count:2147483648"_s,
        count("orange"_s, "Face result count:2147483648"_s));
    row("a face count of nothing", "Face result count:"_s,
        count("white"_s, "Face result count:"_s));
    row("a face count of nothing but a CR", "Face result count:\r"_s,
        count("white"_s, "Face result count:"_s));
    row("the second number of a face count does not matter", "Face result count:1:0"_s,
        count("white"_s, "Face result count:1:0"_s));
    row("empty parts of a face count do not matter", "Face result count::3"_s,
        count("white"_s, "Face result count::3"_s));
    row("blanks around a face count go", "  Face result count:1  \r"_s,
        count("white"_s, "Face result count:1"_s));
    row("a face count inside a line is a part of it", "The Face result count:0"_s, "<tr></tr>"_s);

    row("one field", "Hello sensor"_s, "<tr></tr>"_s);
    row("one field with a colon", "Version:1.0"_s, "<tr></tr>"_s);
    row("an unknown label has no values", "Expression\tHappy:90"_s,
        "<tr><td>Expression</td><td></td></tr>"_s);
    row("a mark colours an unknown label's cell", "Expression\tHappy:90 *"_s,
        R"(<tr><td>Expression</td><td style="color:lime;"></td></tr>)"_s);
    row("a mark in the label counts", "Expression*\tHappy:90"_s,
        R"(<tr><td>Expression*</td><td style="color:lime;"></td></tr>)"_s);
    row("a mark in a third field counts", "Age\tAge:34\t*"_s,
        "<tr><td>Age</td><td style=\"color:lime;\">Age:<span style=\"color:yellow;\">34</span> "
        "</td></tr>"_s);
    row("further fields are not shown", "Expression\tA\tB\tC"_s,
        "<tr><td>Expression</td><td></td></tr>"_s);
    row("several tabs are one border", "Age\t\t\tAge:34"_s,
        R"(<tr><td>Age</td><td>Age:<span style="color:yellow;">34</span> </td></tr>)"_s);
    row("a label keeps its blanks", "Age of face \tAge:34"_s,
        R"(<tr><td>Age of face </td><td>Age:<span style="color:yellow;">34</span> </td></tr>)"_s);

    row("an index", "Index:0\tX:320 Y:240 Size:120 Confidence:800"_s,
        "<tr><td style=\"font-weight:bold;\">Index:0</td>"
        "<td>X:320 Y:240 Size:120 Confidence:800 </td></tr>"_s);
    row("an index in odd case", "iNDEX:0\tX:320  Y:240"_s,
        R"(<tr><td style="font-weight:bold;">iNDEX:0</td><td>X:320  Y:240 </td></tr>)"_s);
    row("an index is shown as it stands", "Index:007:8\tx"_s,
        R"(<tr><td style="font-weight:bold;">Index:007:8</td><td>x </td></tr>)"_s);
    row("a mark does not colour an index", "Index:0\tX:1 *"_s,
        R"(<tr><td style="font-weight:bold;">Index:0</td><td>X:1 * </td></tr>)"_s);
    row("an index of letters shows the raw line", "Index:first\tX:1 Y:2 Size:3 Confidence:4"_s,
        "<tr>Index:first\tX:1 Y:2 Size:3 Confidence:4</tr>"_s);
    row("an index of nothing shows the raw line", "  Index:\tX:1\t \r"_s, "<tr>Index:\tX:1</tr>"_s);
    row("an index with one field", "Index:4"_s, "<tr></tr>"_s);
    row("an index without its colon is another label", "Index\t4"_s,
        "<tr><td>Index</td><td></td></tr>"_s);

    row("an age", "Age\tAge:34 Confidence:500"_s,
        "<tr><td>Age</td><td>Age:<span style=\"color:yellow;\">34</span> Confidence:500 "
        "</td></tr>"_s);
    row("numbers are shown as read", "Age\tAge:034 Confidence:+05"_s,
        "<tr><td>Age</td><td>Age:<span style=\"color:yellow;\">34</span> Confidence:5 "
        "</td></tr>"_s);
    row("an age of letters is shown as it stands", "Age\tAge:old Confidence:500"_s,
        "<tr><td>Age</td><td>Age:oldConfidence:500 </td></tr>"_s);
    row("a confidence of letters is shown as it stands", "Age\tConfidence:high Age:34"_s,
        "<tr><td>Age</td><td>Confidence:highAge:<span style=\"color:yellow;\">34</span> "
        "</td></tr>"_s);
    row("other tokens of an age run together", "Age\tabout Age:34 or so"_s,
        R"(<tr><td>Age</td><td>aboutAge:<span style="color:yellow;">34</span> orso</td></tr>)"_s);
    row("the token of an age in small letters is another token", "Age\tage:34 confidence:5"_s,
        "<tr><td>Age</td><td>age:34confidence:5</td></tr>"_s);
    row("an age's label in small letters is another label", "age\tAge:34"_s,
        "<tr><td>age</td><td></td></tr>"_s);
    row("the tokens of a gender are strange to an age", "Age\tGender:Male LR:5"_s,
        "<tr><td>Age</td><td>Gender:MaleLR:5</td></tr>"_s);
    row("a marked age", "Age\tAge:34 Confidence:500 *"_s,
        "<tr><td>Age</td><td style=\"color:lime;\">Age:<span style=\"color:yellow;\">34</span> "
        "Confidence:500 *</td></tr>"_s);

    row("a man", "Gender\tGender:Male Confidence:500"_s,
        "<tr><td>Gender</td><td>Gender:<span style=\"color:skyblue;\">Male </span>"
        "Confidence:500 </td></tr>"_s
            + closing);
    row("a marked woman", "Gender\tGender:Female Confidence:500 *"_s,
        "<tr><td>Gender</td><td style=\"color:lime;\">Gender:<span style=\"color:deeppink;\">"
        "Female </span>Confidence:500 *</td></tr>"_s
            + closing);
    row("a gender word in small letters is shown as it stands", "Gender\tGender:male"_s,
        "<tr><td>Gender</td><td>Gender:male</td></tr>"_s + closing);
    row("an unknown gender is shown as it stands", "Gender\tGender:Unknown Confidence:0"_s,
        "<tr><td>Gender</td><td>Gender:UnknownConfidence:0 </td></tr>"_s + closing);
    row("a gender word with more letters is shown as it stands", "Gender\tGender:Males"_s,
        "<tr><td>Gender</td><td>Gender:Males</td></tr>"_s + closing);
    row("a gender without a word is shown as it stands", "Gender\tGender: Male"_s,
        "<tr><td>Gender</td><td>Gender:Male</td></tr>"_s + closing);
    row("a one-field gender closes the face", "Gender"_s, "<tr></tr>"_s + closing);
    row("any label that starts like a gender closes the face", "Genders\tx"_s,
        "<tr><td>Genders</td><td>x</td></tr>"_s + closing);
    row("a gender's label in small letters closes nothing", "gender\tGender:Male"_s,
        "<tr><td>gender</td><td></td></tr>"_s);

    row("a direction", "Face Direction\tLR:5 UD:-3 Roll:1 Confidence:700"_s,
        "<tr><td>Face Direction</td><td>LR:5 UD:-3 Roll:1 Confidence:700 </td></tr>"_s);
    row("angles are shown as they stand", "Face Direction\tLR:05 UD:x Roll: Tilt:9"_s,
        "<tr><td>Face Direction</td><td>LR:05 UD:x Roll: Tilt:9 </td></tr>"_s);
    row("a direction's confidence is shown as read",
        "Face Direction\tConfidence:0700 Confidence:x"_s,
        "<tr><td>Face Direction</td><td>Confidence:700 Confidence:x </td></tr>"_s);
    row("a mark colours a direction", "Face Direction\tLR:5 *"_s,
        R"(<tr><td>Face Direction</td><td style="color:lime;">LR:5 * </td></tr>)"_s);
    row("a direction's label in small letters is another label", "Face direction\tLR:5"_s,
        "<tr><td>Face direction</td><td></td></tr>"_s);

    row("markup is not escaped", "<b>One</b>\t<i>\nAge\t<img src=\"x\"> Age:3"_s,
        "<tr><td><b>One</b></td><td></td></tr><tr><td>Age</td><td><imgsrc=\"x\">"
        "Age:<span style=\"color:yellow;\">3</span> </td></tr>"_s);
    row("markup in a failure is not escaped", "Failed <a href='x'>&amp;"_s,
        failure("Failed <a href='x'>&amp;"_s));
    row("markers in a failure are text", "Failed %1 %2 %99 %L1"_s,
        failure("Failed %1 %2 %99 %L1"_s));
    row("markers in a face count are text", "Face result count:%1 %2"_s,
        count("orange"_s, "Face result count:%1 %2"_s));
    row("markers in a label and its values are text", "Age %1\tAge:3 %1 %2"_s,
        R"(<tr><td>Age %1</td><td>Age:<span style="color:yellow;">3</span> %1%2</td></tr>)"_s);
    row("markers in an index are text", "Index:1:%1\t%1 %2"_s,
        R"(<tr><td style="font-weight:bold;">Index:1:%1</td><td>%1 %2 </td></tr>)"_s);
    row("markers in a direction and a gender are text",
        "Face Direction %2\t%1 LR:%1\nGender %1\t%2 Gender:%1"_s,
        "<tr><td>Face Direction %2</td><td>%1 LR:%1 </td></tr>"
        "<tr><td>Gender %1</td><td>%2Gender:%1</td></tr>"_s
            + closing);

    row("a NUL stays in the text", "Failed a\0b"_s, failure("Failed a\0b"_s));
    row("text behind a NUL is read", "x\0\nAge\tAge:3"_s,
        R"(<tr></tr><tr><td>Age</td><td>Age:<span style="color:yellow;">3</span> </td></tr>)"_s);
    row("blanks of other kinds around a line go", "\u00a0\u2003Failed x\u00a0\v\f"_s,
        failure("Failed x"_s));
    row("a no-break space does not split tokens", "Face Direction\tLR:1\u00a0UD:2"_s,
        "<tr><td>Face Direction</td><td>LR:1\u00a0UD:2 </td></tr>"_s);
    row("a line separator of Unicode ends no line", "Failed a\u2028Failed b"_s,
        failure("Failed a\u2028Failed b"_s));
    row("the first half of a line", "Face res"_s, "<tr></tr>"_s);
    row("the second half of a line", "ult count:0\n"_s, "<tr></tr>"_s);
}

void tst_SensorOutputParser::html()
{
    QFETCH(QString, chunk);
    QFETCH(QString, rows);
    const SensorFrame frame = parse(chunk);
    QCOMPARE(frame.html, table(rows));
    QCOMPARE(brokenRule(frame), QString());
}

void tst_SensorOutputParser::faces_data()
{
    QTest::addColumn<QString>("chunk");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const QString &chunk, const QString &expected) {
        QTest::newRow(name) << chunk << expected;
    };
    // A face of one line, so that it is committed whatever else is wrong with it.
    const auto ageFace = [](const QString &values) -> QString {
        return "Index:0\t-\nAge\t"_s + values + "\nGender\t-\n"_s;
    };
    const auto boxFace = [](const QString &values) -> QString {
        return "Index:0\t"_s + values + "\nAge\tAge:1\nGender\t-\n"_s;
    };
    const auto directionFace = [](const QString &values) -> QString {
        return "Index:0\t-\nFace Direction\t"_s + values + "\nAge\tAge:1\nGender\t-\n"_s;
    };
    const auto genderFace = [](const QString &values) -> QString {
        return "Index:0\t-\nAge\tAge:1\nGender\t"_s + values + "\n"_s;
    };
    const QString ageOnly = "#0 age(1)@0"_s;

    row("an empty chunk", QString(), QString());

    row("all of a box", boxFace("X:1 Y:2 Size:3 Confidence:4"_s),
        "#0 box(Size=3 X=1 Y=2)@4 age(1)@0"_s);
    row("a box in another order", boxFace("Confidence:4 Size:3 Y:2 X:1"_s),
        "#0 box(Size=3 X=1 Y=2)@4 age(1)@0"_s);
    row("a box of three tokens is none", boxFace("X:1 Y:2 Size:3"_s), ageOnly);
    row("a fourth token of any kind completes a box", boxFace("X:1 Y:2 Size:3 *"_s),
        "#0 box(Size=3 X=1 Y=2)@0 age(1)@0"_s);
    row("several blanks are no token", boxFace("X:1  Y:2   Size:3  "_s), ageOnly);
    row("a box whose confidence is letters", boxFace("X:1 Y:2 Size:3 Confidence:x"_s),
        "#0 box(Size=3 X=1 Y=2)@0 age(1)@0"_s);
    row("a box without X", boxFace("Z:1 Y:2 Size:3 Confidence:4"_s), ageOnly);
    row("a box whose Y is letters", boxFace("X:1 Y:b Size:3 Confidence:4"_s), ageOnly);
    row("a box whose size is missing", boxFace("X:1 Y:2 Size: Confidence:4"_s), ageOnly);
    row("a box with small letters", boxFace("x:1 Y:2 Size:3 Confidence:4"_s), ageOnly);
    row("of two boxes' tokens the last one wins",
        boxFace("X:1 Y:2 Size:3 Confidence:4 X:5 Size:6 Size:x Confidence:7"_s),
        "#0 box(Size=6 X=5 Y=2)@7 age(1)@0"_s);
    row("a box is never marked", boxFace("X:1 Y:2 Size:3 Confidence:4 *"_s),
        "#0 box(Size=3 X=1 Y=2)@4 age(1)@0"_s);
    row("a box of extremes", boxFace("X:-2147483648 Y:2147483647 Size:2147483647 Confidence:-1"_s),
        "#0 box(Size=2147483647 X=-2147483648 Y=2147483647)@-1 age(1)@0"_s);
    row("a box beyond the range", boxFace("X:2147483648 Y:2 Size:3 Confidence:4"_s), ageOnly);

    row("an age", ageFace("Age:34 Confidence:500"_s), "#0 age(34)@500"_s);
    row("an age without confidence", ageFace("Age:34"_s), "#0 age(34)@0"_s);
    row("a confidence before its age", ageFace("Confidence:500 Age:34"_s), "#0 age(34)@500"_s);
    row("a marked age", ageFace("Age:34 Confidence:500 *"_s), "#0 age(34)@500*"_s);
    row("a mark within a token", ageFace("Age:34 Confidence:500*"_s), "#0 age(34)@0*"_s);
    row("an age of letters is none", ageFace("Age:old Confidence:500"_s), QString());
    row("an age with letters behind it is none", ageFace("Age:34y"_s), QString());
    row("an age with a mark at it is none", ageFace("Age:34*"_s), QString());
    row("an age in exponent form is none", ageFace("Age:1e1"_s), QString());
    row("an age in hexadecimal form is none", ageFace("Age:0x10"_s), QString());
    row("an age with a fraction is none", ageFace("Age:3.5"_s), QString());
    row("an age in digits of another script is none", ageFace("Age:\u0663\u0664"_s), QString());
    row("an age with a group separator is none", ageFace("Age:1,000"_s), QString());
    row("an age beyond 32 bits is none", ageFace("Age:4294967330"_s), QString());
    row("an age beyond 64 bits is none", ageFace("Age:99999999999999999999999"_s), QString());
    row("a signed age", ageFace("Age:+7"_s), "#0 age(7)@0"_s);
    row("a negative age", ageFace("Age:-7"_s), "#0 age(-7)@0"_s);
    row("an age of 0", ageFace("Age:0"_s), "#0 age(0)@0"_s);
    row("an age with leading zeros", ageFace("Age:007"_s), "#0 age(7)@0"_s);
    row("empty parts of an age do not matter", ageFace("Age::34:35"_s), "#0 age(34)@0"_s);
    row("of two ages the last one wins", ageFace("Age:34 Age:35 Age:x"_s), "#0 age(35)@0"_s);
    row("of two confidences the last one wins",
        ageFace("Age:34 Confidence:1 Confidence:2 Confidence:"_s), "#0 age(34)@2"_s);
    row("of two age lines the last one wins",
        "Index:0\t-\nAge\tAge:34 Confidence:5 *\n"
        "Age\tAge:35\nGender\t-\n"_s,
        "#0 age(35)@0"_s);
    row("an age line without an age takes nothing away",
        "Index:0\t-\nAge\tAge:34\nAge\tAge:x\nGender\t-\n"_s, "#0 age(34)@0"_s);
    row("an age in a further field is ignored", "Index:0\t-\nAge\t-\tAge:34\nGender\t-\n"_s,
        QString());
    row("any label that starts with Age", "Index:0\t-\nAged\tAge:34\nGender\t-\n"_s,
        "#0 age(34)@0"_s);

    row("a man", genderFace("Gender:Male Confidence:500"_s), "#0 age(1)@0 gender(1)@500"_s);
    row("a woman", genderFace("Gender:Female Confidence:500"_s), "#0 age(1)@0 gender(2)@500"_s);
    row("a marked woman", genderFace("Gender:Female *"_s), "#0 age(1)@0 gender(2)@0*"_s);
    row("a gender word in small letters is none", genderFace("Gender:male"_s), ageOnly);
    row("an unknown gender is none", genderFace("Gender:Unknown"_s), ageOnly);
    row("a gender word apart from its label is none", genderFace("Gender: Male"_s), ageOnly);
    row("of two genders the last one wins", genderFace("Gender:Male Gender:Female Gender:x"_s),
        "#0 age(1)@0 gender(2)@0"_s);
    row("empty parts of a gender do not matter", genderFace("Gender::Male"_s),
        "#0 age(1)@0 gender(1)@0"_s);
    row("a gender alone makes a face", "Index:0\t-\nGender\tGender:Male\n"_s, "#0 gender(1)@0"_s);
    row("a gender with a CR at its end", "Index:0\t-\r\nGender\tGender:Male\r\n"_s,
        "#0 gender(1)@0"_s);

    row("all of a direction", directionFace("LR:5 UD:-3 Roll:1 Confidence:700"_s),
        "#0 direction(DirectionValue=8 LR=5 Roll=1 UD=-3)@700 age(1)@0"_s);
    row("a direction without roll", directionFace("LR:-5 UD:-3"_s),
        "#0 direction(DirectionValue=8 LR=-5 UD=-3)@0 age(1)@0"_s);
    row("roll does not count", directionFace("LR:0 UD:0 Roll:90"_s),
        "#0 direction(DirectionValue=0 LR=0 Roll=90 UD=0)@0 age(1)@0"_s);
    row("a direction without UD", directionFace("LR:5 Roll:1"_s),
        "#0 direction(DirectionValue=2147483647 LR=5 Roll=1)@0 age(1)@0"_s);
    row("a direction whose UD is letters", directionFace("LR:5 UD:x"_s),
        "#0 direction(DirectionValue=2147483647 LR=5)@0 age(1)@0"_s);
    row("a direction without LR is none", directionFace("UD:3 Roll:1 Confidence:700"_s), ageOnly);
    row("a direction whose LR is letters is none", directionFace("LR:x UD:3 Roll:1"_s), ageOnly);
    row("a direction is never marked", directionFace("LR:5 UD:3 *"_s),
        "#0 direction(DirectionValue=8 LR=5 UD=3)@0 age(1)@0"_s);
    row("of two angles the last one wins",
        directionFace("LR:5 LR:6 UD:1 UD:2 LR:x Roll:3 Roll:4"_s),
        "#0 direction(DirectionValue=8 LR=6 Roll=4 UD=2)@0 age(1)@0"_s);
    row("the lowest angles are capped", directionFace("LR:-2147483648 UD:-2147483648"_s),
        "#0 direction(DirectionValue=2147483647 LR=-2147483648 UD=-2147483648)@0 age(1)@0"_s);
    row("the largest angles are capped", directionFace("LR:2147483647 UD:1"_s),
        "#0 direction(DirectionValue=2147483647 LR=2147483647 UD=1)@0 age(1)@0"_s);
    row("an angle beyond the range is none", directionFace("LR:2147483648 UD:1"_s), ageOnly);

    row("no index, no face", "Age\tAge:34\nGender\tGender:Male\n"_s, QString());
    row("an index and nothing else", "Index:0\t-\nGender\t-\n"_s, QString());
    row("a negative index", "Index:-1\t-\nAge\tAge:34\nGender\tGender:Male\n"_s, QString());
    row("an index of letters leaves the one before",
        "Index:4\t-\nIndex:x\tX:1 Y:2 Size:3 Confidence:4\nAge\tAge:34\nGender\t-\n"_s,
        "#4 age(34)@0"_s);
    row("an index with one field leaves the one before",
        "Index:4\t-\nIndex:5\nAge\tAge:34\nGender\t-\n"_s, "#4 age(34)@0"_s);
    row("a negative index replaces the one before",
        "Index:4\t-\nIndex:-5\t-\nAge\tAge:34\nGender\t-\n"_s, QString());
    row("an index with two numbers takes the first", "Index:1:2\t-\nAge\tAge:34\nGender\t-\n"_s,
        "#1 age(34)@0"_s);
    row("an index with an empty part takes the number", "Index::1\t-\nAge\tAge:34\nGender\t-\n"_s,
        "#1 age(34)@0"_s);
    row("an index in capitals", "INDEX:3\t-\nAge\tAge:34\nGender\t-\n"_s, "#3 age(34)@0"_s);
    row("the largest index", "Index:2147483647\t-\nAge\tAge:34\nGender\t-\n"_s,
        "#2147483647 age(34)@0"_s);
    row("an index beyond the range", "Index:2147483648\t-\nAge\tAge:34\nGender\t-\n"_s, QString());
    row("items before the index belong to the face", "Age\tAge:34\nIndex:2\t-\nGender\t-\n"_s,
        "#2 age(34)@0"_s);
    row("a face that was not closed carries its items into the next index",
        "Index:0\tX:1 Y:2 Size:3 Confidence:4\nAge\tAge:34\nIndex:1\t-\nGender\tGender:Male\n"_s,
        "#1 box(Size=3 X=1 Y=2)@4 age(34)@0 gender(1)@0"_s);
    row("a face that is never closed is lost", "Index:0\t-\nAge\tAge:34\n"_s, QString());
    row("the end prompt drops the face",
        "Index:0\t-\nAge\tAge:34\nPress Space Key to end:\n"
        "Gender\tGender:Male\n"_s,
        QString());
    row("an indented end prompt drops nothing",
        "Index:0\t-\nAge\tAge:34\n"
        " Press Space Key to end:\nGender\tGender:Male\n"_s,
        "#0 age(34)@0 gender(1)@0"_s);
    row("a face count drops nothing",
        "Index:0\t-\nAge\tAge:34\nFace result count:0\n"
        "Gender\tGender:Male\n"_s,
        "#0 age(34)@0 gender(1)@0"_s);
    row("a failed gender line does not close the face",
        "Index:0\t-\nAge\tAge:34\n"
        "Gender\tFailed x\nGender\tGender:Male\n"_s,
        "#0 age(34)@0 gender(1)@0"_s);
    row("a one-field gender closes the face",
        "Index:0\t-\nAge\tAge:34\nGender\nAge\tAge:35\n"
        "Gender\tGender:Male\n"_s,
        "#0 age(34)@0"_s);
    row("an unindexed gender resets the face",
        "Age\tAge:34\nGender\t-\nIndex:0\t-\n"
        "Gender\tGender:Male\n"_s,
        "#0 gender(1)@0"_s);
    row("the same index twice", ageFace("Age:34"_s) + ageFace("Age:35"_s),
        "#0 age(34)@0; #0 age(35)@0"_s);
    row("faces are counted by their own lines", "Face result count:0\n"_s + ageFace("Age:34"_s),
        "#0 age(34)@0"_s);
    row("confidences of 0 do not matter", genderFace("Gender:Male Confidence:0"_s),
        "#0 age(1)@0 gender(1)@0"_s);
    row("the last line needs no end", "Index:0\t-\nGender\tGender:Male"_s, "#0 gender(1)@0"_s);
    row("a line cut in the middle of its label", "Index:0\t-\nAge\tAge:34\nGend"_s, QString());
    row("a line cut in the middle of its value", "Index:0\t-\nAge\tAge:34\nGender\tGender:Fem"_s,
        "#0 age(34)@0"_s);
    row("a NUL in a number is no number", ageFace("Age:3\0004"_s), QString());
}

void tst_SensorOutputParser::faces()
{
    QFETCH(QString, chunk);
    QFETCH(QString, expected);
    const SensorFrame frame = parse(chunk);
    QCOMPARE(describe(frame), expected);
    QCOMPARE(brokenRule(frame), QString());
    QVERIFY(isSameUnseen(chunk));
}

void tst_SensorOutputParser::flags_data()
{
    QTest::addColumn<QString>("chunk");
    QTest::addColumn<bool>("errorSeen");
    QTest::addColumn<bool>("noFace");

    QTest::newRow("nothing") << QString() << false << false;
    QTest::newRow("a failure") << "Failed x"_s << true << false;
    QTest::newRow("a failure in small letters") << "it failed again"_s << true << false;
    QTest::newRow("the word without a blank") << "Failed\n"_s << false << false;
    QTest::newRow("a failure behind the end prompt")
        << "Press Space Key to end: Failed x"_s << false << false;
    QTest::newRow("a failure before usual lines")
        << "Failed x\nFace result count:1"_s << true << false;
    QTest::newRow("nobody") << "Face result count:0"_s << false << true;
    QTest::newRow("nobody in odd case") << "fACE RESULT count:0"_s << false << true;
    QTest::newRow("a blank before the number") << "Face result count: 0"_s << false << true;
    QTest::newRow("a blank before a number above 0") << "Face result count: 2"_s << false << false;
    QTest::newRow("a negative count") << "Face result count:-3"_s << false << true;
    QTest::newRow("a count of letters") << "Face result count:x"_s << false << true;
    QTest::newRow("no count") << "Face result count:"_s << false << false;
    QTest::newRow("somebody") << "Face result count:1"_s << false << false;
    QTest::newRow("nobody, then somebody")
        << "Face result count:0\nFace result count:1"_s << false << true;
    QTest::newRow("a failed count") << "Face result count:0 Failed x"_s << true << false;
    QTest::newRow("a failure and nobody") << "Failed x\nFace result count:0"_s << true << true;
}

void tst_SensorOutputParser::flags()
{
    QFETCH(QString, chunk);
    QFETCH(bool, errorSeen);
    QFETCH(bool, noFace);
    const SensorFrame frame = parse(chunk);
    QCOMPARE(frame.errorSeen, errorSeen);
    QCOMPARE(frame.noFace, noFace);
    const QStringList lines = SensorOutputParser::plainText(chunk).split(QLatin1Char('\n'));
    QCOMPARE(std::any_of(lines.cbegin(), lines.cend(), &SensorOutputParser::isError), errorSeen);
    QVERIFY(isSameUnseen(chunk));
}

void tst_SensorOutputParser::valueTypes()
{
    const SensorFrame frame = parseBytes(readData("one-face.txt"_s));
    QCOMPARE(frame.faces.size(), 1);
    const FaceResult &face = frame.faces.first();
    const auto typeOf = [](const QVariant &value) { return int(value.type()); };

    QCOMPARE(typeOf(face.item(FaceResultItem::Age).value), int(QMetaType::Int));
    QCOMPARE(typeOf(face.item(FaceResultItem::Gender).value), int(QMetaType::Int));
    const QVariantMap box = face.item(FaceResultItem::Detection).value.toMap();
    QCOMPARE(QStringList(box.keys()), QStringList({"Size"_s, "X"_s, "Y"_s}));
    for (const QVariant &value : box)
        QCOMPARE(typeOf(value), int(QMetaType::Int));
    const QVariantMap direction = face.item(FaceResultItem::Direction).value.toMap();
    QCOMPARE(
        QStringList(direction.keys()), QStringList({"DirectionValue"_s, "LR"_s, "Roll"_s, "UD"_s}));
    for (const QVariant &value : direction)
        QCOMPARE(typeOf(value), int(QMetaType::Int));
}

void tst_SensorOutputParser::faceTimeAndLists()
{
    const SensorFrame frame = parse("Index:3\tX:1 Y:1 Size:50 Confidence:1\n"
                                    "Face Direction\tLR:1 UD:1\nGender\t-\n"
                                    "Index:1\t-\nGender\tGender:Male\n"
                                    "Index:2\tX:1 Y:1 Size:70 Confidence:1\nGender\t-\n"_s);
    QCOMPARE(frame.faces.size(), 3);
    QCOMPARE(frame.sizes, QVector<int>({50, 0, 70}));
    QCOMPARE(frame.directionValues, QVector<int>({2, 2147483647, 2147483647}));
    for (const FaceResult &face : frame.faces)
        QCOMPARE(face.time, chunkTime());
}

void tst_SensorOutputParser::translatedFailure()
{
    FailureTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const QString html = parse("failed to open com port.\nFailed to close COM port."_s).html;
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(html,
        table("<tr><td><span style=\"color:red;font-weight:bold;\">Der COM-Anschluss fehlt: %1"
              "</span></td></tr><tr><td><span style=\"color:red;font-weight:bold;\">"
              "Failed to close COM port.</span></td></tr>"_s));
}

void tst_SensorOutputParser::nothingIsCarriedOver()
{
    QCOMPARE(describe(parse("Index:0\t-\nAge\tAge:34\n"_s)), QString());
    QCOMPARE(describe(parse("Gender\tGender:Male\n"_s)), QString());
    QVERIFY(parse("Failed x\nFace result count:0\n"_s).errorSeen);
    const SensorFrame next = parse("Face result count:1\n"_s);
    QVERIFY(!next.errorSeen);
    QVERIFY(!next.noFace);
}

void tst_SensorOutputParser::anyCut_data()
{
    QTest::addColumn<QByteArray>("bytes");

    for (const char *name : {"one-face", "nobody", "port-absent", "two-frames"})
        QTest::newRow(name) << readData(QString::fromLatin1(name) + ".txt"_s);
    QTest::newRow("CRLF") << readData("two-frames.txt"_s).replace('\n', "\r\n");
    QTest::newRow("text beyond ASCII")
        << QByteArray("\xEF\xBB\xBF"
                      "Index:0\t\xE9\xA1\x94 X:1\nAge\t\xF0\x9F\x98\x80 Age:3 *\n"
                      "Failed \xC3\xA4%1\nGender\tGender:Male\xC2\xA0\nPress Space Key to end:");
}

void tst_SensorOutputParser::anyCut()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!bytes.isEmpty());
    const int wholeFaces = parseBytes(bytes).faces.size();
    for (int cut = 0; cut <= bytes.size(); ++cut) {
        const SensorFrame head = parseBytes(bytes.left(cut));
        const SensorFrame tail = parseBytes(bytes.mid(cut));
        const QByteArray where = "cut at byte " + QByteArray::number(cut);
        QVERIFY2(brokenRule(head).isEmpty(), where.constData());
        QVERIFY2(brokenRule(tail).isEmpty(), where.constData());
        QVERIFY2(head.faces.size() + tail.faces.size() <= wholeFaces, where.constData());
        QVERIFY2(head.faces.size() + tail.faces.size() >= wholeFaces - 1, where.constData());
    }
}

void tst_SensorOutputParser::cutBetweenFaces()
{
    const QString text = QString::fromUtf8(readData("two-frames.txt"_s));
    const SensorFrame whole = parse(text);
    static const QRegularExpression faceEnd(
        R"(^Gender.*\n)"_s, QRegularExpression::MultilineOption);
    int cuts = 0;
    for (auto it = faceEnd.globalMatch(text); it.hasNext(); ++cuts) {
        const int cut = it.next().capturedEnd();
        const SensorFrame head = parse(text.left(cut));
        const SensorFrame tail = parse(text.mid(cut));
        QCOMPARE(QString(head.html + tail.html).remove("</table><table>"_s), whole.html);
        QCOMPARE(head.faces.size() + tail.faces.size(), whole.faces.size());
        QCOMPARE(head.sizes + tail.sizes, whole.sizes);
        QCOMPARE(head.directionValues + tail.directionValues, whole.directionValues);
    }
    QCOMPARE(cuts, 4);
}

void tst_SensorOutputParser::oddBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("rows");

    const QByteArray before("Failed ");
    const auto failure = [](const QString &text) -> QString {
        return R"(<tr><td><span style="color:red;font-weight:bold;">Failed )"_s + text
            + "</span></td></tr>"_s;
    };
    QTest::newRow("a byte order mark is dropped")
        << QByteArray("\xEF\xBB\xBF" + before + "x") << failure("x"_s);
    QTest::newRow("a stray byte becomes a replacement character") << QByteArray(before
        + "a\xFF"
          "b") << failure("a\uFFFDb"_s);
    QTest::newRow("half a character becomes a replacement character")
        << QByteArray(before + "a\xC3") << failure("a\uFFFD"_s);
    QTest::newRow("a NUL swallows nothing")
        << QByteArray(before + QByteArray("a\0b\0", 4)) << failure("a\0b\0"_s);
    QTest::newRow("a NUL between lines swallows nothing")
        << QByteArray(before + QByteArray("a\n\0\nFailed b", 12))
        << QString(failure("a"_s) + "<tr></tr>"_s + failure("b"_s));
}

void tst_SensorOutputParser::oddBytes()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, rows);
    QCOMPARE(parseBytes(bytes).html, table(rows));
}

void tst_SensorOutputParser::manyFaces()
{
    constexpr int Count = 20000;
    QString chunk;
    for (int index = 0; index < Count; ++index)
        chunk += "Index:%1\tX:1 Y:2 Size:%1 Confidence:3\nGender\tGender:Male\n"_s.arg(index);
    const SensorFrame frame = parse(chunk);
    QCOMPARE(frame.faces.size(), Count);
    QCOMPARE(frame.sizes.last(), Count - 1);
    QCOMPARE(brokenRule(frame), QString());
}

void tst_SensorOutputParser::labels_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<bool>("isLabel");

    QTest::newRow("an index") << "Index:0"_s << true;
    QTest::newRow("an index in other letters") << "INDEX:12"_s << true;
    QTest::newRow("an index with more behind it") << "Index:3:x"_s << true;
    QTest::newRow("an index that is no number") << "Index:x"_s << false;
    QTest::newRow("an index without number") << "Index:"_s << false;
    QTest::newRow("an age") << "Age"_s << true;
    QTest::newRow("an age in other letters") << "age"_s << false;
    QTest::newRow("what begins like an age") << "Ages of x"_s << true;
    QTest::newRow("a gender") << "Gender"_s << true;
    QTest::newRow("a direction") << "Face Direction"_s << true;
    QTest::newRow("half a direction") << "Face"_s << false;
    QTest::newRow("a failure") << "Age Failed x"_s << false;
    QTest::newRow("a face count") << "Face result count:1"_s << false;
    QTest::newRow("another") << "Blink"_s << false;
    QTest::newRow("none") << QString() << false;
}

/// A label is one whose value changes the face, or is shown.
void tst_SensorOutputParser::labels()
{
    QFETCH(QString, label);
    QFETCH(bool, isLabel);

    QCOMPARE(SensorOutputParser::isLabel(label), isLabel);
    const QString value = "X:1 Y:2 Size:3 Confidence:4 Age:5 Gender:Male LR:6"_s;
    const SensorFrame frame
        = SensorOutputParser::parse("Index:1\t-\n%1\t%2\nGender"_s.arg(label, value), QDateTime());
    const bool isRead = !frame.faces.isEmpty();
    QCOMPARE(isRead, isLabel);
}

QTEST_GUILESS_MAIN(tst_SensorOutputParser)

#include "tst_sensoroutputparser.moc"
