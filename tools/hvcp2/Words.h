#pragma once

#include "tools/analysis/Plan.h"
#include "tools/analysis/Words.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonValue>
#include <QString>

/// What a stage's own names are called in a terminal, and in files.
namespace Hvcp2 {

QJsonArray requestsJson(const QVector<Analysis::LoggedRequest> &requests);
/// As isoTime() has it; null without a time.
QJsonValue timeJson(const QDateTime &time, int toleranceMs);

QString contentWord(const Analysis::Plan &plan, int number); ///< "#3 Women 20-39"
QString screenWord(const Analysis::Plan &plan); ///< "Shop window, screen 1 (Window)"
QString settingsWord(const Analysis::Plan &plan); ///< "concurrent 1, event-sending-limit 3000 ms"

} // namespace Hvcp2
