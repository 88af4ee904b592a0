#pragma once

#include <QJsonObject>
#include <QString>

/// The texts of a stage file as they are shown: to lay out one of a megabyte takes seconds.
namespace Stage {

/// @p text, or its beginning and an ellipsis when it has more than @p limit characters (1 or more).
QString shortened(const QString &text, int limit);

/// The text under @p key, with 500 characters at most.
QString shownText(const QJsonObject &object, const QString &key);

/// The name of @p entry, one of a screen's contents: its own, else the one in its "params".
QString contentName(const QJsonObject &entry);

} // namespace Stage
