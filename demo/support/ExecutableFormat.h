#pragma once

#include <QByteArray>
#include <QString>

namespace Demo {

/// For which system and processor a program is, told from the first bytes of its file.
struct ExecutableFormat
{
    enum System { Unknown, Windows, Linux, Script };

    System system = Unknown;
    QString processor; ///< as QSysInfo names it; empty when it is none of those known here

    static constexpr int HeaderBytes = 4096; ///< that are enough

    static ExecutableFormat of(const QByteArray &header);
    static ExecutableFormat ofThisProgram();

    /// Whether a machine with @p processor runs it under @p runner. A script needs a system that
    /// has interpreters for it.
    bool runsOn(System runner, const QString &machine) const;

    QString toText() const; ///< for example "a Windows program for x86_64"
};

} // namespace Demo
