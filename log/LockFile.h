#pragma once

#include <QDateTime>
#include <QString>

#include <functional>

/// The empty file that keeps writers of several processes apart. It is advisory: of two that see
/// it absent at the same moment, both go on.
namespace PluginKrHvcP2::LockFile {

enum class State {
    Absent,
    Young, ///< its owner is at work
    Stale, ///< left behind by a writer that crashed, more than 30 s ago
    Unusable, ///< a directory or device stands in its place
};

struct Found
{
    State state = State::Absent;
    bool isLink = false; ///< it is as old as what it names, and absent when it names nothing
};

/// What lies at @p path. @p clock returns the current time; it is asked only when an age has to be
/// known.
Found look(const QString &path, const std::function<QDateTime()> &clock);

/// Creates the file, or empties the stale one, after look() has found it so; a link in its place
/// is replaced, what it names is not touched. False when that cannot be done.
bool take(const QString &path, const Found &found);

} // namespace PluginKrHvcP2::LockFile
