#include "tests/support/OwnNamespaces_linux.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <vector>

#include <unistd.h>

namespace KrTest {

namespace {

constexpr char Mark[] = "KRHVC_OWN_NAMESPACES";

} // namespace

void runInOwnNamespaces(const QStringList &options, char *argv[])
{
    QStringList all = options;
    if (::geteuid() != 0)
        all << QStringLiteral("--user") << QStringLiteral("--map-root-user");
    const QString program = QStringLiteral("unshare");
    if (QProcess::execute(program, all + QStringList(QStringLiteral("true"))) != 0)
        return;

    std::vector<QByteArray> words{program.toLocal8Bit()};
    for (const QString &option : qAsConst(all))
        words.push_back(option.toLocal8Bit());
    words.push_back(QFile::encodeName(QCoreApplication::applicationFilePath()));
    std::vector<char *> arguments;
    for (QByteArray &word : words)
        arguments.push_back(word.data());
    for (char **argument = argv + 1; *argument != nullptr; ++argument)
        arguments.push_back(*argument);
    arguments.push_back(nullptr);
    qputenv(Mark, "1");
    ::execvp(arguments.front(), arguments.data());
}

bool isInOwnNamespaces()
{
    return qEnvironmentVariableIsSet(Mark);
}

} // namespace KrTest
