#include "detection/Determination.h"
#include "detection/SensorOutputParser.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QtTest>

using namespace KrTest;
using namespace PluginKrHvcP2;

namespace {

/// "#2 40-49 female default" for each line; an invalid content for a line of another form.
DetectionContents readContents(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^#(\\d+) (\\d+)-(\\d+) (male|female|both)( default)?$"));
    DetectionContents contents;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = form.match(line);
        if (match.hasMatch()) {
            contents.append(
                {match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(),
                    genderFromText(match.captured(4)), !match.captured(5).isEmpty(), {}});
        } else if (!line.isEmpty()) {
            contents.append(DetectionContent());
        }
    }
    return contents;
}

/// A line for each face: first those that get a sequence, in the order of sending, then the others.
QString decide(const SensorFrame &frame, const DetectionContents &contents)
{
    QString text;
    const auto add = [&text](int face, const QString &decision) {
        text += QStringLiteral("face %1 -> %2\n").arg(QString::number(face), decision);
    };
    const QList<CalculatedData> results
        = determineSequences(frame.faces, frame.sizes, frame.directionValues, contents);
    for (const CalculatedData &result : results) {
        // Rounded, for readers; tst_determination looks at each digit.
        const QString score = QString::number(result.score, 'g', 10);
        add(result.faceIndex,
            QStringLiteral("#%1 (%2)").arg(QString::number(result.seqNumber), score));
    }
    for (const FaceResult &face : frame.faces) {
        if (!matchContent(face, contents).isValid())
            add(face.index, QStringLiteral("none"));
    }
    return text.isEmpty() ? QStringLiteral("nobody\n") : text;
}

} // namespace

/// Whole situations, one readable file for each: from the sensor program's text to who gets what.
class tst_Decisions : public QObject
{
    Q_OBJECT

private slots:
    void order_data();
    void order();
};

void tst_Decisions::order_data()
{
    QTest::addColumn<QString>("fileName");

    const QDir directory(QFINDTESTDATA("decisions"));
    const auto files = directory.entryInfoList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name);
    QVERIFY(!files.isEmpty());
    for (const QFileInfo &file : files)
        QTest::newRow(qPrintable(file.baseName())) << file.filePath();
}

void tst_Decisions::order()
{
    QFETCH(QString, fileName);

    static const QRegularExpression form(
        QStringLiteral("\\n\\[contents\\]\\n(.*)\\n\\[frame\\]\\n(.*)\\n\\[order\\]\\n(.*)$"),
        QRegularExpression::DotMatchesEverythingOption);
    const QString text = readText(fileName);
    const QRegularExpressionMatch parts = form.match(text);
    QVERIFY2(parts.hasMatch(), "a section is missing");
    const DetectionContents contents = readContents(parts.captured(1));
    for (const DetectionContent &content : contents)
        QVERIFY2(content.isValid(), "a content cannot be read");

    const QDateTime time(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC);
    const QString actual = decide(SensorOutputParser::parse(parts.captured(2), time), contents);
    const QString expected = parts.captured(3);
    if (actual != expected && qEnvironmentVariableIsSet("KRHVC_RENEW_GOLDEN")) {
        QVERIFY(writeFile(fileName, QString(text.left(parts.capturedStart(3)) + actual).toUtf8()));
        QSKIP("The expected order was renewed.");
    }
    QCOMPARE(actual, expected);
}

QTEST_GUILESS_MAIN(tst_Decisions)

#include "tst_decisions.moc"
