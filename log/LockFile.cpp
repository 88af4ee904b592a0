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

} // namespace

Found look(const QString &path, const std::function<QDateTime()> &clock)
{
    // Existence and kind by one look: the owner may remove the file between two.
    std::error_code error;
    const fs::file_type type = fs::symlink_status(nativePath(path), error).type();
    if (type == fs::file_type::not_found || type == fs::file_type::none)
        return {}; // what keeps us from looking will keep us from taking it, too
    const bool isLink = type == fs::file_type::symlink;
    if (!isLink && type != fs::file_type::regular)
        return {State::Unusable, false};

    const QDateTime modified = QFileInfo(path).lastModified();
    if (!modified.isValid())
        return {State::Absent, isLink}; // it has gone since, or is a link to nothing
    const bool isStale = modified.msecsTo(clock()) > StaleAgeMs;
    return {isStale ? State::Stale : State::Young, isLink};
}

bool take(const QString &path, const Found &found)
{
    if (found.isLink && !QFile::remove(path))
        return false;
    QFile file(path);
    return file.open(QIODevice::WriteOnly);
}

} // namespace PluginKrHvcP2::LockFile
