#pragma once

#include "core/screen/DetectionContent.h"
#include "tools/analysis/Coverage.h"
#include "tools/analysis/Decider.h"
#include "tools/analysis/Plan.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonValue>
#include <QString>

/// What values are called, for people and in JSON.
namespace Hvcp2 {

QString reasonWord(PluginKrHvcP2::EntryReason reason); ///< for example "ages reversed"
QString fitWord(Analysis::Choice::Fit fit); ///< "fits", "default", "age alone", "nothing"
/// "sent", "restricted", "cut", "nothing".
QString outcomeWord(Analysis::DecidedFace::Outcome outcome);
/// "#2 sent, #3 restricted"; "nothing" without any.
QString requestsWord(const QVector<Analysis::LoggedRequest> &requests);
QJsonArray requestsJson(const QVector<Analysis::LoggedRequest> &requests); ///< the same
QString genderWord(PluginKrHvcP2::Gender gender); ///< "female", "male", "unknown"
QString agesWord(const Analysis::AgeRange &ages); ///< "20-29", "20" for a single year
QString asKey(QString word); ///< "ages-reversed"

/// "2018-02-01 09:30:00", in the time of its source; with milliseconds unless they are unknown,
/// with "UTC" when it is in that.
QString timeWord(const QDateTime &time, int toleranceMs);
/// The same for programs: "2018-02-01T09:30:00.000Z".
QString isoTime(const QDateTime &time, int toleranceMs);
QJsonValue timeJson(const QDateTime &time, int toleranceMs); ///< likewise; null without a time
QString twoDigits(qint64 number); ///< "05"
QString durationWord(qint64 ms); ///< "0.5 s", "2 min 05 s", "3 h 02 min"

QString contentWord(const Analysis::Plan &plan, int number); ///< "#3 Women 20-39"
QString screenWord(const Analysis::Plan &plan); ///< "Shop window, screen 1 (Window)"
QString settingsWord(const Analysis::Plan &plan); ///< "concurrent 1, event-sending-limit 3000 ms"

} // namespace Hvcp2
