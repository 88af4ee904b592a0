#include "tests/docs/MarkdownPage.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace KrTest;

namespace {

constexpr int CommandTimeout = 60000; // ms

QString root()
{
    return QFileInfo(QFINDTESTDATA("../../README.md")).absolutePath() + QLatin1Char('/');
}

/// The pages by their paths from the root.
QStringList pages()
{
    QStringList names;
    for (const char *const folder : {"", "docs/", "demo/player/", "demo/simulator/", "tests/"}) {
        const QString path = QLatin1String(folder);
        const QStringList files
            = QDir(root() + path).entryList({QStringLiteral("*.md")}, QDir::Files, QDir::Name);
        for (const QString &file : files)
            names.append(path + file);
    }
    return names;
}

void addPages()
{
    QTest::addColumn<QString>("page");

    const QStringList names = pages();
    QVERIFY(names.contains(QStringLiteral("docs/reference.md")));
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << name;
}

bool copyTree(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        const QFileInfo copy(to + file.mid(from.size()));
        if (!QDir().mkpath(copy.absolutePath()) || !QFile::copy(file, copy.filePath()))
            return false;
    }
    return true;
}

/// What stands in the folder "demo" of an archive, and the plug-in's folder and log of a host.
bool makeFolder(const QString &folder)
{
    const QString programs = QFileInfo(QStringLiteral(KRHVC_PLUGIN_FILE)).absolutePath();
    for (const char *const name : {"/recordings", "/scenarios", "/stages"}) {
        if (!copyTree(programs + QLatin1String(name), folder + QLatin1String(name)))
            return false;
    }
    const QString plugins = folder + QStringLiteral("/plugins/");
    const QString plugin = QStringLiteral(KRHVC_PLUGIN_FILE);
    return QDir(folder).mkpath(QStringLiteral("plugins"))
        && QDir(folder).mkpath(QStringLiteral("log"))
        && QFile::copy(plugin, plugins + QFileInfo(plugin).fileName())
        && QFile::copy(
            QStringLiteral(KRHVC_SIMULATOR_FILE), plugins + QStringLiteral("HvcCon.exe"));
}

/// Empty for a program that is none of ours.
QString programFile(const QString &name)
{
    static const QHash<QString, QString> files{
        {QStringLiteral("hvcp2"), QStringLiteral(KRHVC_HVCP2_FILE)},
        {QStringLiteral("HvcCon.exe"), QStringLiteral(KRHVC_SIMULATOR_FILE)},
        {QStringLiteral("KrStagePlayer"), QStringLiteral(KRHVC_PLAYER_FILE)},
    };
    return files.value(name);
}

/// The pages call the plug-in file as it is called on the product's system.
const QString DocumentedPlugin = QStringLiteral("KrHvcP2.dll");

QString pluginName()
{
    return QFileInfo(QStringLiteral(KRHVC_PLUGIN_FILE)).fileName();
}

QStringList printedLines(QProcess *process)
{
    QString text
        = QString::fromUtf8(process->readAllStandardOutput() + process->readAllStandardError());
    text.remove(QLatin1Char('\r')).replace(pluginName(), DocumentedPlugin);
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
}

} // namespace

/// What the Markdown pages of the repository say, as far as a program can tell.
class tst_Documents : public QObject
{
    Q_OBJECT

private slots:
    void links_data() { addPages(); }
    void links();
    void commands_data() { addPages(); }
    void commands();
    void scripts_data() { addPages(); }
    void scripts();
    void quotedHost();
    void pictures();

private:
    void runCommand(const DocumentedCommand &command, const QString &folder);
};

/// They lead to files and headings that there are.
void tst_Documents::links()
{
    QFETCH(QString, page);

    const QString file = root() + page;
    const QVector<MarkdownLink> links = linksOf(readText(file));
    for (const MarkdownLink &link : links) {
        if (link.target.startsWith(QLatin1String("https:")))
            continue;
        const QString where = QStringLiteral("%1:%2: %3").arg(page).arg(link.line).arg(link.target);
        const QString path = link.target.section(QLatin1Char('#'), 0, 0);
        const QString anchor = link.target.section(QLatin1Char('#'), 1);
        const QString target = path.isEmpty() ? file : QFileInfo(file).dir().filePath(path);
        QVERIFY2(QFileInfo::exists(target), qPrintable(where));
        if (!anchor.isEmpty())
            QVERIFY2(anchorsOf(readText(target)).contains(anchor), qPrintable(where));
    }
}

/// In blocks named "console", each prints what stands below it. A block whose name has a file
/// behind it is written to that file first.
void tst_Documents::commands()
{
    QFETCH(QString, page);

    const QTemporaryDir directory;
    bool isFilled = false;
    const QVector<MarkdownBlock> blocks = blocksOf(readText(root() + page));
    for (const MarkdownBlock &block : blocks) {
        const bool isConsole = block.language == QLatin1String("console");
        if (!isConsole && block.fileName.isEmpty())
            continue;
        if (!isFilled)
            QVERIFY(makeFolder(directory.path()));
        isFilled = true;
        if (isConsole) {
            const QVector<DocumentedCommand> commands = commandsOf(block);
            QVERIFY2(!commands.isEmpty(), qPrintable(QStringLiteral("line %1").arg(block.line)));
            for (const DocumentedCommand &command : commands) {
                runCommand(command, directory.path());
                if (QTest::currentTestFailed())
                    return;
            }
            continue;
        }
        const QFileInfo file(directory.filePath(block.fileName));
        QVERIFY(QDir().mkpath(file.absolutePath()));
        const QString text = block.lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
        QVERIFY(writeFile(file.filePath(), text.toUtf8()));
    }
}

void tst_Documents::runCommand(const DocumentedCommand &command, const QString &folder)
{
    const QString program = programFile(command.words.constFirst());
    const QString where
        = QStringLiteral("line %1: %2").arg(command.line).arg(command.words.join(QLatin1Char(' ')));
    QVERIFY2(!program.isEmpty(), qPrintable(where));

    QProcess process;
    process.setWorkingDirectory(folder);
    QStringList arguments = command.words.mid(1);
    process.start(program, arguments.replaceInStrings(DocumentedPlugin, pluginName()));
    QVERIFY2(process.waitForFinished(CommandTimeout), qPrintable(where));
    const QStringList printed = printedLines(&process);
    const QString report = QStringLiteral("%1\n%2").arg(where, printed.join(QLatin1Char('\n')));
    QVERIFY2(process.exitStatus() == QProcess::NormalExit, qPrintable(report));
    QVERIFY2(process.exitCode() <= 1, qPrintable(report)); // 2 is a bad call
    QVERIFY2(fits(printed, command.output), qPrintable(report));
}

/// Those of the repository, and the presets, exist; and what the programs of an installation do is
/// shown in a block that is run.
void tst_Documents::scripts()
{
    QFETCH(QString, page);

    static const QRegularExpression script(
        QStringLiteral("(?<![\\w/.])scripts/[a-z0-9-]*[a-z](\\.sh)?"));
    static const QRegularExpression preset(QStringLiteral("--preset[ =]([a-z][a-z-]*)"));
    static const QRegularExpression ours(
        QStringLiteral("^\\s*(hvcp2|HvcCon\\.exe|KrStagePlayer) "));
    const QString presets = readText(root() + QStringLiteral("CMakePresets.json"));
    const QString text = readText(root() + page);
    QRegularExpressionMatchIterator scripts = script.globalMatch(text);
    while (scripts.hasNext()) {
        const QString name = scripts.next().captured();
        QVERIFY2(QFileInfo::exists(root() + name), qPrintable(name));
    }
    QRegularExpressionMatchIterator names = preset.globalMatch(text);
    while (names.hasNext()) {
        const QString name = names.next().captured(1);
        QVERIFY2(presets.contains(QStringLiteral("\"name\": \"%1\"").arg(name)), qPrintable(name));
    }
    const QVector<MarkdownBlock> blocks = blocksOf(text);
    for (const MarkdownBlock &block : blocks) {
        if (block.language == QLatin1String("console"))
            continue;
        for (const QString &line : block.lines)
            QVERIFY2(!ours.match(line).hasMatch(), qPrintable(line));
    }
}

/// The page for engineers of a host quotes the small host that the devel component is tested with.
void tst_Documents::quotedHost()
{
    const QHash<QString, QString> sources{
        {QStringLiteral("cpp"), readText(root() + QStringLiteral("tests/packaging/host/main.cpp"))},
        {QStringLiteral("cmake"),
            readText(root() + QStringLiteral("tests/packaging/host/CMakeLists.txt"))},
    };
    int quoted = 0;
    const QVector<MarkdownBlock> blocks
        = blocksOf(readText(root() + QStringLiteral("docs/host-integration.md")));
    for (const MarkdownBlock &block : blocks) {
        if (!sources.contains(block.language))
            continue;
        ++quoted;
        const QString text = block.lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
        QVERIFY2(sources.value(block.language).contains(text), qPrintable(text));
    }
    QVERIFY(quoted >= 2);
}

/// Each picture is shown by a page, is made by scripts/pictures and takes little room.
void tst_Documents::pictures()
{
    QString texts;
    const QStringList names = pages();
    for (const QString &name : names)
        texts += readText(root() + name);
    const QString script = readText(root() + QStringLiteral("scripts/pictures"));
    const QFileInfoList pictures = QDir(root() + QStringLiteral("docs"))
                                       .entryInfoList({QStringLiteral("*.png")}, QDir::Files);
    QVERIFY(!pictures.isEmpty());
    for (const QFileInfo &picture : pictures) {
        QVERIFY2(
            texts.contains(picture.fileName() + QLatin1Char(')')), qPrintable(picture.fileName()));
        QVERIFY2(script.contains(picture.fileName()), qPrintable(picture.fileName()));
        QVERIFY2(picture.size() < 150 * 1024, qPrintable(picture.fileName()));
    }
}

QTEST_GUILESS_MAIN(tst_Documents)

#include "tst_documents.moc"
