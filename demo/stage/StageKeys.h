#pragma once

#include <QString>

/// Keys of a stage file beside those of a screen's parameter map.
namespace Stage::StageKeys {

inline const QString Title = QStringLiteral("title");
inline const QString Screen = QStringLiteral("screen");
inline const QString Screens = QStringLiteral("screens");
inline const QString Params = QStringLiteral("params");

inline const QString Card = QStringLiteral("card");
inline const QString Subtitle = QStringLiteral("subtitle");
inline const QString Color = QStringLiteral("color");
inline const QString Picture = QStringLiteral("picture");
inline const QString Duration = QStringLiteral("duration");

inline const QString Idle = QStringLiteral("idle");
inline const QString Sequence = QStringLiteral("sequence");
inline const QString After = QStringLiteral("after");

inline const QString Event = QStringLiteral("event");
inline const QString Type = QStringLiteral("type");
inline const QString Direction = QStringLiteral("direction");
inline const QString Sequences = QStringLiteral("seq");
inline const QString TargetSequence = QStringLiteral("screenseq");

} // namespace Stage::StageKeys
