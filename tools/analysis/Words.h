#pragma once

#include "core/screen/DetectionContent.h"
#include "core/screen/Gender.h"
#include "detection/FaceEvaluation.h"
#include "tools/analysis/Coverage.h"
#include "tools/analysis/Decider.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <functional>

/// What values are called, for people and in JSON.
namespace Analysis {

/// What became of a content is called in English; the context of a translation is
/// "Analysis::Words".
struct ContentReasonWords
{
    PluginKrHvcP2::ContentReason reason;
    const char *word; ///< in a cell; two reasons may share one
    const char *key; ///< in JSON
    const char *meaning; ///< a sentence
};
extern const std::array<ContentReasonWords, 10> ContentReasons; ///< in the order of a legend
const ContentReasonWords &wordsOf(PluginKrHvcP2::ContentReason reason);
QString reasonWord(PluginKrHvcP2::EntryReason reason); ///< for example "ages reversed"
QString fitWord(Choice::Fit fit); ///< "fits", "default", "age alone", "nothing"
/// "sent", "restricted", "cut", "nothing".
QString outcomeWord(DecidedFace::Outcome outcome);
/// "#2 sent, #3 restricted"; "nothing" without any.
QString requestsWord(const QVector<LoggedRequest> &requests);
QString genderWord(PluginKrHvcP2::Gender gender); ///< "female", "male", "unknown"
QString genderWord(const PluginKrHvcP2::FaceEvaluation &evaluation); ///< "female*" when settled
QString ageWord(const PluginKrHvcP2::FaceEvaluation &evaluation); ///< "30", "30*", "unknown"
QString directionWord(const PluginKrHvcP2::FaceResult &face); ///< "12", "unknown"
QString scoreWord(double score); ///< "3.5"
QString bonusWord(double bonus); ///< "+1.5"; empty without any
QString sequenceWord(int number); ///< "#3"
QString agesWord(const AgeRange &ages); ///< "20-29", "20" for a single year
QString asKey(QString word); ///< "ages-reversed"

/// "2018-02-01 09:30:00", in the time of its source; with milliseconds unless they are unknown,
/// with "UTC" when it is in that.
QString timeWord(const QDateTime &time, int toleranceMs);
/// The same for programs: "2018-02-01T09:30:00.000Z".
QString isoTime(const QDateTime &time, int toleranceMs);
QString twoDigits(qint64 number); ///< "05"
QString durationWord(qint64 ms); ///< "0.5 s", "2 min 05 s", "3 h 02 min"

/// "The sensor program counted no face.", or that the frame holds no complete one.
QString noFaceWord(const Decision &decision);
/// "The times leave open whether #3 was restricted; the log tells."; empty when they do not.
QString evidenceWord(const DecidedFace &face);
/// "Sent: #3 Women 20-39", or why nothing was. @p contentWord tells what a sequence is called.
QString sentWord(const Decision &decision, const std::function<QString(int)> &contentWord);

} // namespace Analysis
