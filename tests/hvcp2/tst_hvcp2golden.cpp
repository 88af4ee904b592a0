#include "tests/hvcp2/GoldenOutput.h"
#include "tests/support/Files.h"
#include "tools/hvcp2/Program.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

using namespace Hvcp2;
using namespace KrTest;

namespace {

/// The forms that programs read.
void compareForms(const QStringList &arguments, const QString &name)
{
    for (const char *const form : {"json", "csv"}) {
        const QString option = QLatin1String("--") + QLatin1String(form);
        compareWithGolden(outputOf(arguments + QStringList(option)),
            QStringLiteral("%1.%2.txt").arg(name, QLatin1String(form)));
        if (QTest::currentTestFailed())
            return;
    }
}

} // namespace

/// Each command for each stage of golden/, with what it has to print beside it.
class tst_Hvcp2Golden : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void help_data();
    void help();
    void stages_data();
    void stages();
    void pictures_data();
    void pictures();
    void frames_data();
    void frames();
    void reports_data();
    void reports();
};

void tst_Hvcp2Golden::initTestCase()
{
    const QString directory = QFINDTESTDATA("golden");
    QVERIFY(!directory.isEmpty());
    // So that outputs name the stages without a folder.
    QVERIFY(QDir::setCurrent(directory));
}

void tst_Hvcp2Golden::help_data()
{
    QTest::addColumn<QString>("command"); // empty: the program

    QTest::newRow("program") << "";
    const QVector<Command> commands = allCommands();
    for (const Command &command : commands)
        QTest::newRow(qPrintable(command.name)) << command.name;
}

void tst_Hvcp2Golden::help()
{
    QFETCH(QString, command);

    QStringList arguments{QStringLiteral("--help")};
    if (!command.isEmpty())
        arguments.prepend(command);
    const QString text = outputOf(arguments);
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines)
        QVERIFY2(line.size() <= 80, qPrintable(line));
    compareWithGolden(text,
        QStringLiteral("help%1.txt")
            .arg(command.isEmpty() ? QString() : QLatin1Char('.') + command));
}

void tst_Hvcp2Golden::stages_data()
{
    QTest::addColumn<QString>("stage");
    QTest::addColumn<QString>("command");

    for (const char *const stage : {"door", "empty", "names", "window"}) {
        for (const char *const command : {"explain", "coverage"}) {
            QTest::addRow("%s %s", command, stage) << stage << command;
        }
    }
}

void tst_Hvcp2Golden::stages()
{
    QFETCH(QString, stage);
    QFETCH(QString, command);

    const QStringList arguments{command, QStringLiteral("--stage"), stage + QLatin1String(".json")};
    const QString text = outputOf(arguments);
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines)
        QVERIFY2(line.size() <= 80, qPrintable(line));
    const QString name = stage + QLatin1Char('.') + command;
    compareWithGolden(text, name + QLatin1String(".txt"));
    compareForms(arguments, name);
}

void tst_Hvcp2Golden::pictures_data()
{
    QTest::addColumn<QString>("stage");

    for (const char *const stage : {"door", "empty", "names", "window"})
        QTest::newRow(stage) << stage;
}

void tst_Hvcp2Golden::pictures()
{
    QFETCH(QString, stage);

    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("picture.svg"));
    const QStringList arguments{
        QStringLiteral("coverage"), QStringLiteral("--stage"), stage + QLatin1String(".json")};
    QCOMPARE(outputOf(arguments + QStringList{QStringLiteral("-o"), file}), outputOf(arguments));
    const QString picture = readText(file);
    QXmlStreamReader reader(picture);
    while (!reader.atEnd())
        reader.readNext();
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    compareWithGolden(picture, stage + QLatin1String(".coverage.svg"));
}

void tst_Hvcp2Golden::frames_data()
{
    QTest::addColumn<QString>("name"); // of the file with the output
    QTest::addColumn<QString>("arguments"); // separated by blanks

    const auto add = [](const char *name, const char *arguments) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(arguments);
    };
    add("compare.stages", "compare shop.rec --stage window.json --stage door.json");
    add("compare.settings",
        "compare shop.rec --stage door.json --settings concurrent=2 event-sending-limit=1000");
    add("compare.empty", "compare shop.rec --stage window.json --stage empty.json");
}

void tst_Hvcp2Golden::frames()
{
    QFETCH(QString, name);
    QFETCH(QString, arguments);

    const QStringList words = arguments.split(QLatin1Char(' '));
    const QString text = outputOf(words);
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines)
        QVERIFY2(line.size() <= 80, qPrintable(line));
    compareWithGolden(text, name + QLatin1String(".txt"));
    compareForms(words, name);
}

void tst_Hvcp2Golden::reports_data()
{
    QTest::addColumn<QString>("frames");
    QTest::addColumn<QString>("stage"); // empty: none
    QTest::addColumn<QString>("name"); // of what has to be printed

    QTest::newRow("log") << "visitors.log.txt"
                         << ""
                         << "log";
    QTest::newRow("log with a stage") << "visitors.log.txt"
                                      << "door.json"
                                      << "log.door";
    QTest::newRow("recording") << "visitors.out"
                               << ""
                               << "recording";
    QTest::newRow("recording with a stage") << "visitors.out"
                                            << "door.json"
                                            << "recording.door";
    QTest::newRow("nothing") << "nothing.out"
                             << ""
                             << "nothing";
}

void tst_Hvcp2Golden::reports()
{
    QFETCH(QString, frames);
    QFETCH(QString, stage);
    QFETCH(QString, name);

    QStringList arguments{QStringLiteral("report"), frames};
    if (!stage.isEmpty())
        arguments << QStringLiteral("--stage") << stage;
    const QString text = outputOf(arguments);
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines)
        QVERIFY2(line.size() <= 80, qPrintable(line));
    name += QLatin1String(".report");
    compareWithGolden(text, name + QLatin1String(".txt"));
    compareForms(arguments, name);

    const QTemporaryDir directory;
    const QString page = directory.filePath(QStringLiteral("page.html"));
    outputOf(arguments + QStringList{QStringLiteral("-o"), page});
    compareWithGolden(readText(page), name + QLatin1String(".html"));
}

QTEST_GUILESS_MAIN(tst_Hvcp2Golden)

#include "tst_hvcp2golden.moc"
