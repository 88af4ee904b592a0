#include "demo/support/ExecutableFormat.h"
#include "tests/support/Files.h"
#include "tests/support/SensorProgram.h"
#include "tests/support/Waiting.h"
#include "tools/hvcp2/Finding.h"
#include "tools/hvcp2/Installation.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace Hvcp2;
using Demo::ExecutableFormat;
using namespace KrTest;

namespace {

const QString SensorName = QStringLiteral("HvcCon.exe");
#ifdef Q_OS_WIN
const QString PluginFileName = QStringLiteral("KrHvcP2.dll");
#else
const QString PluginFileName = QStringLiteral("KrHvcP2.so");
#endif

/// Each as "OK subject: text", "warning ..." or "error ...".
QStringList linesOf(const Findings &findings)
{
    QStringList lines;
    for (const Finding &finding : findings) {
        const QString level = finding.level == Finding::Ok ? QStringLiteral("OK ")
            : finding.level == Finding::Warning            ? QStringLiteral("warning ")
                                                           : QStringLiteral("error ");
        lines << level + finding.subject + QLatin1String(": ") + finding.text;
    }
    return lines;
}

/// Whoever finds something wrong says what to do.
bool haveAdvice(const Findings &findings)
{
    return std::all_of(findings.cbegin(), findings.cend(), [](const Finding &finding) {
        return (finding.level == Finding::Ok) == finding.advice.isEmpty();
    });
}

QByteArray windowsHeader(quint16 machine)
{
    QByteArray header(256, '\0');
    header.replace(0, 2, "MZ");
    header[60] = '\x80';
    header.replace(128, 2, "PE");
    header[132] = static_cast<char>(machine & 0xff);
    header[133] = static_cast<char>(machine >> 8);
    return header;
}

QByteArray linuxHeader(quint16 machine)
{
    QByteArray header(64, '\0');
    header.replace(0, 4,
        "\x7f"
        "ELF");
    header[18] = static_cast<char>(machine & 0xff);
    return header;
}

} // namespace

class tst_Hvcp2Check : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void settings_data();
    void settings();
    void noSettings();
    void plugin_data();
    void plugin();
    void sensorProgram_data();
    void sensorProgram();
    void programThatMayNotBeRun();
    void recorder_data();
    void recorder();
    void runningCopies();
    void logDirectory_data();
    void logDirectory();
    void logDirectoryWithoutRights();
    void contents();
    void formats_data();
    void formats();
    void text();
    void program_data();
    void program();

private:
    QString path(const QString &name = {}) const { return m_directory->filePath(name); }
    bool write(const QString &name, const QByteArray &content) const
    {
        return writeFile(path(name), content);
    }
    bool installProgram(const QString &file, const QString &name) const
    {
        return QFile::copy(QFileInfo(file).absoluteFilePath(), path(name));
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_Hvcp2Check::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
}

void tst_Hvcp2Check::settings_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<QStringList>("expected"); // of the values and keys that are not fine

    const auto row = [](const char *name, const QByteArray &ini, const QStringList &expected) {
        QTest::newRow(name) << ini << expected;
    };
    // clang-format off
    row("all three", "[Main]\nPort=7\nSpeed=115200\nInterval=250\n", {});
    row("a byte order mark", "\xef\xbb\xbf[Main]\r\nPort=7\r\n", {});
    row("a port with its name", "[Main]\nPort=COM5\n",
        {QStringLiteral(R"(error setting.ini, Port: "COM5" is no whole number, the plug-in reads 0)")});
    row("a list", "[Main]\nSpeed=921,600\n",
        {QStringLiteral(R"(error setting.ini, Speed: "921, 600" is no whole number, the plug-in reads 0)")});
    row("nothing behind the key", "[Main]\nInterval=\n",
        {QStringLiteral(R"(error setting.ini, Interval: "" is no whole number, the plug-in reads 0)")});
    row("zero", "[Main]\nPort=0\n",
        {QStringLiteral("error setting.ini, Port: 0 is out of range, the plug-in reads 0")});
    row("too large", "[Main]\nSpeed=99999999999\n",
        {QStringLiteral("error setting.ini, Speed: 99999999999 is out of range, the plug-in reads 1215752191")});
    row("a key that nobody reads", "[Main]\nPort=5\nBaud=9600\n",
        {QStringLiteral("warning setting.ini: nobody reads Main/Baud")});
    row("another group", "[Sensor]\nPort=5\n",
        {QStringLiteral("warning setting.ini: nobody reads Sensor/Port")});
    row("no group", "Port=5\n",
        {QStringLiteral("warning setting.ini: nobody reads Port, which stands in no group")});
#ifndef Q_OS_WIN
    row("another letter case", "[main]\nport=5\n",
        {QStringLiteral("warning setting.ini: nobody reads main/port")});
#endif
    // clang-format on
}

void tst_Hvcp2Check::settings()
{
    QFETCH(QByteArray, ini);
    QFETCH(QStringList, expected);
    QVERIFY(write(QStringLiteral("setting.ini"), ini));
    const Findings findings = checkSettings(path(), 500);
    QCOMPARE(
        linesOf(findings).filter(QRegularExpression(QStringLiteral("^(warning|error)"))), expected);
    QVERIFY(haveAdvice(findings));
    QCOMPARE(isFine(findings), expected.isEmpty());
}

void tst_Hvcp2Check::noSettings()
{
    QCOMPARE(linesOf(checkSettings(path(), 750)),
        QStringList(QStringLiteral(
            "OK setting.ini: is not there: port 3, 921600 baud, 750 ms between frames")));

    QVERIFY(write(QStringLiteral("setting.ini"), "[Main]\nPort=5\n"));
    QCOMPARE(linesOf(checkSettings(path(), 750)),
        (QStringList{QStringLiteral("OK setting.ini, Port: 5"),
            QStringLiteral("OK setting.ini, Speed: 921600, since the key is not there"),
            QStringLiteral("OK setting.ini, Interval: 750, since the key is not there")}));

    QVERIFY(write(QStringLiteral("setting.ini"), QByteArray(70000, ';')));
    QCOMPARE(linesOf(checkSettings(path(), 750)),
        QStringList(QStringLiteral("error setting.ini: counts as missing, since it is larger than"
                                   " 65536 bytes: port 3, 921600 baud, 750 ms between frames")));

    QVERIFY(write(QStringLiteral("setting.ini"),
        QByteArray("\xff\xfe[\0M\0a\0i\0n\0]\0\n\0P\0o\0r\0t\0=\0005\0\n\0", 30)));
    const QStringList lines = linesOf(checkSettings(path(), 750));
    QCOMPARE(lines.value(0),
        QStringLiteral("error setting.ini: is not written in UTF-8: its keys are not found"));
    QCOMPARE(lines.value(1), QStringLiteral("OK setting.ini, Port: 3, since the key is not there"));
}

void tst_Hvcp2Check::plugin_data()
{
    QTest::addColumn<QString>("file"); // copied to be the plug-in file; empty: nothing
    QTest::addColumn<QString>("expected"); // its beginning

    QTest::newRow("the plug-in") << KRHVC_PLUGIN_FILE << "OK %1: loads with Qt " QT_VERSION_STR;
    QTest::newRow("nothing") << QString() << "error %1: is not there";
    QTest::newRow("a program") << KRHVC_STANDIN_FILE
                               << "error %1: does not load: it holds no plug-in of Qt (";
    QTest::newRow("text") << __FILE__ << "error %1: does not load: it is no library (";
}

void tst_Hvcp2Check::plugin()
{
    QFETCH(QString, file);
    QFETCH(QString, expected);
    if (file == QLatin1String(__FILE__))
        QVERIFY(write(PluginFileName, "text"));
    else if (!file.isEmpty())
        QVERIFY(installProgram(file, PluginFileName));
    const Findings findings = checkPlugin(path());
    QCOMPARE(findings.size(), 1);
    const QString start = expected.arg(PluginFileName);
    QCOMPARE(linesOf(findings).constFirst().left(start.size()), start);
    QVERIFY(haveAdvice(findings));
}

void tst_Hvcp2Check::sensorProgram_data()
{
    QTest::addColumn<QString>("file"); // a program; else:
    QTest::addColumn<QByteArray>("content"); // of a file
    QTest::addColumn<QString>("expected"); // its beginning

    const QByteArray elsewhere = QSysInfo::kernelType() == QLatin1String("winnt")
        ? linuxHeader(62)
        : windowsHeader(0x8664);
    QTest::newRow("nothing") << QString() << QByteArray() << "error HvcCon.exe: is not there";
    QTest::newRow("a program") << KRHVC_STANDIN_FILE << QByteArray() << "OK HvcCon.exe: a ";
    QTest::newRow("the simulator")
        << KRHVC_SIMULATOR_FILE << QByteArray()
        << "warning HvcCon.exe: is the simulator of the demonstration: it opens no port";
    QTest::newRow("text") << QString() << QByteArray("text")
                          << "error HvcCon.exe: is no program, which does not run here";
    QTest::newRow("a program for another system")
        << QString() << elsewhere << "error HvcCon.exe: is a ";
    QTest::newRow("a program for another processor")
        << QString() << linuxHeader(8) << "error HvcCon.exe: is a Linux program, which ";
}

void tst_Hvcp2Check::sensorProgram()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    if (!file.isEmpty())
        QVERIFY(installProgram(file, SensorName));
    else if (!content.isEmpty())
        QVERIFY(write(SensorName, content));
    const Findings findings = checkSensorProgram(path());
    QCOMPARE(findings.size(), 1);
    QCOMPARE(linesOf(findings).constFirst().left(expected.size()), expected);
    QVERIFY(haveAdvice(findings));
}

void tst_Hvcp2Check::programThatMayNotBeRun()
{
#ifdef Q_OS_UNIX
    QVERIFY(installProgram(QStringLiteral(KRHVC_STANDIN_FILE), SensorName));
    QVERIFY(QFile::setPermissions(path(SensorName), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(linesOf(checkSensorProgram(path())),
        QStringList(QStringLiteral("error HvcCon.exe: may not be run")));
#else
    QSKIP("Files have no such right on this system.");
#endif
}

void tst_Hvcp2Check::recorder_data()
{
    QTest::addColumn<QString>("name"); // of the program behind it; empty: none
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<QString>("expected"); // the beginning of the second finding

    QTest::newRow("the program behind it")
        << "HvcCon-real.exe" << QByteArray() << "OK HvcCon-real.exe: a ";
    QTest::newRow("none behind it")
        << QString() << QByteArray() << "error HvcCon-real.exe: is not there";
    QTest::newRow("another name") << "real.exe" << QByteArray("program=real.exe")
                                  << "OK real.exe: a ";
    QTest::newRow("the plug-in's name for it")
        << "real/HvcCon.exe" << QByteArray("program = real/HvcCon.exe")
        << "warning HvcCon.exe: has the name by which the plug-in ends what is left over";
    QTest::newRow("an option that is none")
        << "HvcCon-real.exe" << QByteArray("loud = yes") << "error hvcp2-record.ini: ";
}

void tst_Hvcp2Check::recorder()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, options);
    QFETCH(QString, expected);
    QVERIFY(installProgram(QStringLiteral(KRHVC_HVCP2_FILE), SensorName));
    QVERIFY(QDir(path()).mkdir(QStringLiteral("real")));
    if (!name.isEmpty())
        QVERIFY(installProgram(QStringLiteral(KRHVC_STANDIN_FILE), name));
    QVERIFY(write(QStringLiteral("hvcp2-record.ini"), options));
    const Findings findings = checkSensorProgram(path());
    QCOMPARE(findings.size(), 2);
    QCOMPARE(linesOf(findings).constFirst(),
        QStringLiteral("OK HvcCon.exe: hvcp2, which records the sensor program behind it"));
    QCOMPARE(linesOf(findings).constLast().left(expected.size()), expected);
    QVERIFY(haveAdvice(findings));
}

void tst_Hvcp2Check::runningCopies()
{
    endSensorPrograms();
    QVERIFY(waitWithoutEvents([] { return sensorProcessCount() == 0; }));
    QCOMPARE(linesOf(checkRunningCopies()),
        QStringList(QStringLiteral("OK Running programs: none is called HvcCon.exe")));

    QVERIFY(installStandIn(path(), "say ready\nkey"));
    QProcess process;
    process.start(path(SensorName), QStringList());
    QVERIFY(process.waitForReadyRead(Patience));
    const Findings findings = checkRunningCopies();
    QCOMPARE(linesOf(findings),
        QStringList(QStringLiteral("warning Running programs: HvcCon.exe runs already, process %1")
                        .arg(process.processId())));
    QVERIFY(haveAdvice(findings));
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished(Patience));
}

void tst_Hvcp2Check::logDirectory_data()
{
    QTest::addColumn<QStringList>("folders"); // made
    QTest::addColumn<QStringList>("files"); // made
    QTest::addColumn<int>("ageSeconds"); // of the files
    QTest::addColumn<QStringList>("expected"); // the beginnings

    const QString folder = QStringLiteral("log/KrHvcP2");
    const QString lock = folder + QStringLiteral("/KrHvcP2Log.lock");
    const QString writable = QStringLiteral("OK Log directory: ");
    const auto row = [](const char *name, const QStringList &folders, const QStringList &files,
                         int ageSeconds, const QStringList &expected) {
        QTest::newRow(name) << folders << files << ageSeconds << expected;
    };
    row("none", {}, {}, 0, {QStringLiteral("error Log directory: ")});
    row("a file", {}, {QStringLiteral("log")}, 0, {QStringLiteral("error Log directory: ")});
    row("an empty one", {QStringLiteral("log")}, {}, 0,
        {writable, QStringLiteral("OK KrHvcP2Log.lock: nobody holds the log")});
    row("with the plug-in's folder", {folder}, {}, 0,
        {writable, QStringLiteral("OK KrHvcP2Log.lock: nobody holds the log")});
    row("a file in the place of the plug-in's folder", {QStringLiteral("log")}, {folder}, 0,
        {QStringLiteral("error Log directory: ")});
    row("a lock", {folder}, {lock}, 0,
        {writable, QStringLiteral("warning KrHvcP2Log.lock: somebody writes the log")});
    row("a lock that was left", {folder}, {lock}, 3600,
        {writable, QStringLiteral("warning KrHvcP2Log.lock: was left behind by a crash")});
    row("a folder in the place of the lock", {lock}, {}, 0,
        {writable, QStringLiteral("error KrHvcP2Log.lock: something that is no file")});
}

void tst_Hvcp2Check::logDirectory()
{
    QFETCH(QStringList, folders);
    QFETCH(QStringList, files);
    QFETCH(int, ageSeconds);
    QFETCH(QStringList, expected);
    for (const QString &folder : qAsConst(folders))
        QVERIFY(QDir(path()).mkpath(folder));
    for (const QString &name : qAsConst(files)) {
        QVERIFY(write(name, {}));
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(
            QDateTime::currentDateTime().addSecs(-ageSeconds), QFileDevice::FileModificationTime));
    }
    const Findings findings = checkLogDirectory(path(QStringLiteral("log")));
    const QStringList lines = linesOf(findings);
    QCOMPARE(lines.size(), expected.size());
    for (int i = 0; i < lines.size(); ++i)
        QCOMPARE(lines.at(i).left(expected.at(i).size()), expected.at(i));
    QVERIFY(haveAdvice(findings));
    const QDir log(path(QStringLiteral("log")));
    QCOMPARE(log.entryList({QStringLiteral("hvcp2-check*")}, QDir::Files), QStringList());
}

/// Of a kind that holds for every user.
void tst_Hvcp2Check::logDirectoryWithoutRights()
{
    const QString directory = QStringLiteral("/proc");
    if (!QFileInfo(directory).isDir())
        QSKIP("This system has no directory that nobody can write.");
    const Findings findings = checkLogDirectory(directory);
    QCOMPARE(linesOf(findings),
        QStringList(QStringLiteral("error Log directory: /proc cannot be written")));
    QVERIFY(haveAdvice(findings));
}

void tst_Hvcp2Check::contents()
{
    QString error;
    const auto plan = Analysis::readPlan(QFINDTESTDATA("golden/door.json"), {}, &error);
    QVERIFY2(plan, qPrintable(error));
    const Findings findings = checkContents(*plan);
    QCOMPARE(findings.size(), 6);
    QCOMPARE(linesOf(findings).constFirst(),
        QStringLiteral("error Content #6 Boys: takes no part: ages reversed"));
    QVERIFY(haveAdvice(findings));
    QVERIFY(findings.constFirst().advice.endsWith(QLatin1String(
        "door.json:13: screens[0].contents[5].params.age-min: 12 is above the highest age, 3")));

    const auto window = Analysis::readPlan(QFINDTESTDATA("golden/window.json"), {}, &error);
    QVERIFY2(window, qPrintable(error));
    QVERIFY(isFine(checkContents(*window)));
}

void tst_Hvcp2Check::formats_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("onWindows"); // for x86_64
    QTest::addColumn<bool>("onLinux"); // likewise

    const auto row = [](const char *name, const QByteArray &header, const char *text,
                         bool onWindows, bool onLinux) {
        QTest::newRow(name) << header << QString::fromLatin1(text) << onWindows << onLinux;
    };
    row("Windows", windowsHeader(0x8664), "a Windows program for x86_64", true, false);
    row("Windows, 32 bits", windowsHeader(0x014c), "a Windows program for i386", true, false);
    row("Windows, ARM", windowsHeader(0xaa64), "a Windows program for arm64", false, false);
    row("Linux", linuxHeader(62), "a Linux program for x86_64", false, true);
    row("Linux, 32 bits", linuxHeader(3), "a Linux program for i386", false, true);
    row("Linux, ARM", linuxHeader(183), "a Linux program for arm64", false, false);
    row("Linux, another one", linuxHeader(8), "a Linux program", false, false);
    row("a script", "#!/bin/sh\n", "a script", false, true);
    row("DOS", QByteArray("MZ") + QByteArray(100, '\0'), "no program", false, false);
    row("cut short", windowsHeader(0x8664).left(130), "no program", false, false);
    row("nothing", QByteArray(), "no program", false, false);
}

void tst_Hvcp2Check::formats()
{
    QFETCH(QByteArray, header);
    QFETCH(QString, text);
    QFETCH(bool, onWindows);
    QFETCH(bool, onLinux);
    const ExecutableFormat format = ExecutableFormat::of(header);
    const QString machine = QStringLiteral("x86_64");
    QCOMPARE(format.toText(), text);
    QCOMPARE(format.runsOn(ExecutableFormat::Windows, machine), onWindows);
    QCOMPARE(format.runsOn(ExecutableFormat::Linux, machine), onLinux);
}

void tst_Hvcp2Check::text()
{
    const QString words = QStringLiteral("word ").repeated(16).trimmed();
    const Findings findings{{Finding::Ok, QStringLiteral("A"), QStringLiteral("fine"), QString()},
        {Finding::Warning, QStringLiteral("B"), words, QStringLiteral("Do this.")},
        {Finding::Error, QStringLiteral("C"), QStringLiteral("a\tb"), QStringLiteral("Do that.")},
        {Finding::Error, QStringLiteral("D"), QStringLiteral("wrong"),
            QStringLiteral("And that.")}};
    QCOMPARE(findingsText(findings, Paint()),
        QStringLiteral(
            "OK       A: fine\n"
            "warning  B: word word word word word word word word word word word word word\n"
            "         word word word\n"
            "         Do this.\n"
            "error    C: a b\n"
            "         Do that.\n"
            "error    D: wrong\n"
            "         And that.\n"
            "\n2 errors, 1 warning.\n"));
    QCOMPARE(findingsText(findings.mid(0, 1), Paint()),
        QStringLiteral("OK       A: fine\n\nAll is fine.\n"));

    const QJsonObject document = findingsJson(findings);
    QCOMPARE(document.value(QStringLiteral("errors")), QJsonValue(2));
    QCOMPARE(document.value(QStringLiteral("warnings")), QJsonValue(1));
    const QJsonArray list = document.value(QStringLiteral("findings")).toArray();
    QCOMPARE(list.size(), 4);
    QCOMPARE(list.at(2).toObject(),
        (QJsonObject{{QStringLiteral("level"), QStringLiteral("error")},
            {QStringLiteral("subject"), QStringLiteral("C")},
            {QStringLiteral("text"), QStringLiteral("a\tb")},
            {QStringLiteral("advice"), QStringLiteral("Do that.")}}));
    QCOMPARE(
        list.at(0).toObject().value(QStringLiteral("level")), QJsonValue(QStringLiteral("ok")));
}

void tst_Hvcp2Check::program_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<QString>("arguments"); // separated by blanks
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error");

    const QByteArray good = "[Main]\nPort=5\n";
    QTest::newRow("all is fine") << good << "." << 0 << "";
    QTest::newRow("with log and stage")
        << good << ". --log-dir . --stage stage.json --screen 2 --json" << 0 << "";
    QTest::newRow("a warning") << good + "Baud=1\n"
                               << "." << 1 << "";
    QTest::newRow("an error") << QByteArray("[Main]\nPort=COM5\n") << ". --json" << 1 << "";
    QTest::newRow("no log directory") << good << ". --log-dir none" << 1 << "";
    QTest::newRow("a content without a part") << good << ". --stage stage.json" << 1 << "";
    QTest::newRow("no folder is given")
        << good << "" << 2 << "One DIR is needed. See 'hvcp2 check --help'.";
    QTest::newRow("two folders") << good << ". ." << 2
                                 << "One DIR is needed. See 'hvcp2 check --help'.";
    QTest::newRow("a file") << good << "setting.ini" << 2 << "setting.ini: is not a folder";
    QTest::newRow("no stage") << good << ". --stage none.json" << 2 << "none.json: no such file";
}

void tst_Hvcp2Check::program()
{
    QFETCH(QByteArray, ini);
    QFETCH(QString, arguments);
    QFETCH(int, status);
    QFETCH(QString, error);
    endSensorPrograms();
    QVERIFY(waitWithoutEvents([] { return sensorProcessCount() == 0; }));
    QVERIFY(installProgram(QStringLiteral(KRHVC_PLUGIN_FILE), PluginFileName));
    QVERIFY(installProgram(QStringLiteral(KRHVC_STANDIN_FILE), SensorName));
    QVERIFY(write(QStringLiteral("setting.ini"), ini));
    QVERIFY(write(QStringLiteral("stage.json"),
        R"({"screens": [{"id": 1, "contents": [{"params": {}}]}, {"id": 2}]})"));

    QProcess process;
    process.setWorkingDirectory(path());
    QStringList list(QStringLiteral("check"));
    if (!arguments.isEmpty())
        list += arguments.split(QLatin1Char(' '));
    process.start(QFileInfo(QStringLiteral(KRHVC_HVCP2_FILE)).absoluteFilePath(), list);
    QVERIFY(process.waitForFinished(Patience));
    const QByteArray output = process.readAllStandardOutput();
    const QString expected = error.isEmpty() ? QString() : QLatin1String("hvcp2 check: ") + error;
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()).trimmed(), expected);
    QVERIFY2(process.exitCode() == status, output.constData());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(output.isEmpty(), status == 2);
    if (list.contains(QStringLiteral("--json")))
        QVERIFY(QJsonDocument::fromJson(output).object().contains(QStringLiteral("findings")));
}

QTEST_GUILESS_MAIN(tst_Hvcp2Check)

#include "tst_hvcp2check.moc"
