#pragma once

#include "sensor/ProcessList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>
#include <set>
#include <vector>

using PluginKrHvcP2::ProcessList::ProcessId;
using Ids = std::set<ProcessId>;

inline ProcessId idOf(const QProcess *process)
{
    return static_cast<ProcessId>(process->processId());
}

/// Programs of a name that nobody else's have; what still runs at the end is ended.
class NamedPrograms
{
public:
    NamedPrograms()
        : name("Kr" + std::to_string(QCoreApplication::applicationPid()) + "t.exe")
    { }
    ~NamedPrograms()
    {
        for (const auto &process : m_processes) {
            process->kill();
            process->waitForFinished();
        }
    }
    Q_DISABLE_COPY(NamedPrograms)

    const std::string name; // looked for; short enough for a command name, 15 characters

    QString fileName() const { return QString::fromStdString(name); }
    QString path(const QString &file) const { return m_directory.filePath(file); }

    /// A native program that ends on the first key; empty when it cannot be made. @p file may name
    /// a directory, too.
    QString copyOfProgram(const QString &file) const
    {
        QDir().mkpath(QFileInfo(path(file)).path());
        return QFile::copy(QStringLiteral(KRHVC_STANDIN_FILE), path(file)) ? path(file) : QString();
    }

    /// Runs a program that says a word when it is up; null when it does not.
    QProcess *run(const QString &program)
    {
        m_processes.push_back(std::make_unique<QProcess>());
        QProcess *process = m_processes.back().get();
        process->start(program, QStringList());
        return process->waitForReadyRead(20000) ? process : nullptr;
    }

    /// The ids of the programs of the name.
    Ids found() const
    {
        const auto ids = PluginKrHvcP2::ProcessList::find(name);
        return {ids.begin(), ids.end()};
    }

private:
    const QTemporaryDir m_directory;
    std::vector<std::unique_ptr<QProcess>> m_processes;
};
