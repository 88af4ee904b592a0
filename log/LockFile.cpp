#include "log/LockFile.h"

#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

namespace PluginKrHvcP2::LockFile {

namespace {

namespace fs = std::filesystem;

constexpr qint64 StaleAgeMs = 30000;

fs::path nativePath(const QString &path)
{
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

/// Existence and kind by one look: the owner may remove the file between two.
fs::file_type typeOf(const QString &path)
{
    std::error_code error;
    return fs::symlink_status(nativePath(path), error).type();
}

} // namespace

State look(const QString &path, const std::function<QDateTime()> &clock)
{
    switch (typeOf(path)) {
    case fs::file_type::none: // whatever keeps us from looking will keep us from taking it, too
    case fs::file_type::not_found:
        return State::Absent;
    case fs::file_type::regular:
    case fs::file_type::symlink:
        break;
    default:
        return State::Unusable;
    }

    const QDateTime modified = QFileInfo(path).lastModified();
    if (!modified.isValid())
        return State::Absent; // it has gone since, or is a link to nothing
    return modified.msecsTo(clock()) > StaleAgeMs ? State::Stale : State::Young;
}

bool take(const QString &path)
{
    if (typeOf(path) == fs::file_type::symlink && !QFile::remove(path))
        return false;
    QFile file(path);
    return file.open(QIODevice::WriteOnly);
}

} // namespace PluginKrHvcP2::LockFile
