#pragma once

#include <QCoreApplication>
#include <QString>

#include <array>

/// The levels of log messages: 0 (no logging) to 5 (information). Of a message the level is passed
/// on as an int.
namespace Kora::LogLevel {

inline constexpr std::array<const char *, 6> Names{
    QT_TRANSLATE_NOOP("Kora::LogLevel", "NoLogging"),
    QT_TRANSLATE_NOOP("Kora::LogLevel", "Critical"),
    QT_TRANSLATE_NOOP("Kora::LogLevel", "Error"),
    QT_TRANSLATE_NOOP("Kora::LogLevel", "Warning"),
    QT_TRANSLATE_NOOP("Kora::LogLevel", "Notice"),
    QT_TRANSLATE_NOOP("Kora::LogLevel", "Information"),
};

/// The translated name of @p level; its number when it is none of the six.
inline QString translatedName(int level)
{
    if (level < 0 || level >= static_cast<int>(Names.size()))
        return QString::number(level);
    return QCoreApplication::translate("Kora::LogLevel", Names.at(static_cast<std::size_t>(level)));
}

} // namespace Kora::LogLevel
