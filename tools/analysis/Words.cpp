#include "tools/analysis/Words.h"

#include <QCoreApplication>

#include <algorithm>

namespace Analysis {

using PluginKrHvcP2::ContentReason;
using PluginKrHvcP2::EntryReason;
using PluginKrHvcP2::FaceEvaluation;
using PluginKrHvcP2::FaceResult;
using PluginKrHvcP2::Gender;

namespace {

QString marked(const QString &text, bool isMarked)
{
    return isMarked ? text + QLatin1Char('*') : text;
}

} // namespace

#define WORD(text) QT_TRANSLATE_NOOP("Analysis::Words", text)

const std::array<ContentReasonWords, 10> ContentReasons{{
    {ContentReason::FullFit, WORD("fits"), "fits",
        WORD("taken: the first that fits gender and age")},
    {ContentReason::DefaultFit, WORD("default"), "default",
        WORD("taken: the last default of the gender; none fits the age as well")},
    {ContentReason::AgeFit, WORD("age alone"), "age-alone",
        WORD("taken: the last that fits the age; none is for the gender")},
    {ContentReason::BehindFullFit, WORD("later"), "later-than-first-fit",
        WORD("not looked at: it comes later than the first that fits")},
    {ContentReason::BeforeFullFit, WORD("earlier"), "before-first-fit",
        WORD("a default, or right for the age alone; a later one fits")},
    {ContentReason::NotLastDefault, WORD("not last"), "not-last-default",
        WORD("a later one like it is taken")},
    {ContentReason::BelowDefault, WORD("below"), "below-default",
        WORD("right for the age alone: a default of the gender goes first")},
    {ContentReason::NotLastAgeFit, WORD("not last"), "not-last-of-age",
        WORD("a later one like it is taken")},
    {ContentReason::OtherAge, WORD("age"), "age", WORD("for the gender, but for another age")},
    {ContentReason::OtherGender, WORD("gender"), "gender",
        WORD("for another gender and another age")},
}};

#undef WORD

const ContentReasonWords &wordsOf(ContentReason reason)
{
    return *std::find_if(ContentReasons.cbegin(), ContentReasons.cend(),
        [reason](const ContentReasonWords &words) { return words.reason == reason; });
}

QString reasonWord(EntryReason reason)
{
    switch (reason) {
    case EntryReason::TakesPart:
        return QStringLiteral("takes part");
    case EntryReason::NoScreenId:
        return QStringLiteral("no screen id");
    case EntryReason::NoLowestAge:
        return QStringLiteral("no lowest age");
    case EntryReason::NoHighestAge:
        return QStringLiteral("no highest age");
    case EntryReason::NoGender:
        return QStringLiteral("no gender");
    case EntryReason::AgesReversed:
        return QStringLiteral("ages reversed");
    case EntryReason::NoOwnEvent:
        return QStringLiteral("no own event");
    case EntryReason::NoLinkingScreen:
        return QStringLiteral("no linking screen");
    }
    return {};
}

QString fitWord(Choice::Fit fit)
{
    switch (fit) {
    case Choice::Nothing:
        return QStringLiteral("nothing");
    case Choice::Full:
        return QStringLiteral("fits");
    case Choice::ByDefault:
        return QStringLiteral("default");
    case Choice::ByAge:
        return QStringLiteral("age alone");
    }
    return {};
}

QString outcomeWord(DecidedFace::Outcome outcome)
{
    switch (outcome) {
    case DecidedFace::NothingFits:
        return QStringLiteral("nothing");
    case DecidedFace::Cut:
        return QStringLiteral("cut");
    case DecidedFace::Restricted:
        return QStringLiteral("restricted");
    case DecidedFace::Sent:
        return QStringLiteral("sent");
    }
    return {};
}

QString requestsWord(const QVector<LoggedRequest> &requests)
{
    QStringList words;
    for (const LoggedRequest &request : requests) {
        words << QStringLiteral("#%1 %2").arg(QString::number(request.number),
            outcomeWord(request.isRestricted ? DecidedFace::Restricted : DecidedFace::Sent));
    }
    return words.isEmpty() ? QStringLiteral("nothing") : words.join(QLatin1String(", "));
}

QString genderWord(Gender gender)
{
    const QString word = PluginKrHvcP2::genderToText(gender);
    return word.isEmpty() ? QStringLiteral("unknown") : word;
}

QString genderWord(const FaceEvaluation &evaluation)
{
    return marked(genderWord(static_cast<Gender>(evaluation.gender)), evaluation.genderMarked);
}

QString ageWord(const FaceEvaluation &evaluation)
{
    const QString age
        = evaluation.age < 0 ? QStringLiteral("unknown") : QString::number(evaluation.age);
    return marked(age, evaluation.ageMarked);
}

QString directionWord(const FaceResult &face)
{
    const int value = face.directionValue();
    return value == PluginKrHvcP2::UnknownDirectionValue ? QStringLiteral("unknown")
                                                         : QString::number(value);
}

QString scoreWord(double score)
{
    return QString::number(score, 'g', 6);
}

QString bonusWord(double bonus)
{
    return bonus > 0 ? QLatin1Char('+') + scoreWord(bonus) : QString();
}

QString sequenceWord(int number)
{
    return QLatin1Char('#') + QString::number(number);
}

QString agesWord(const AgeRange &ages)
{
    const QString from = QString::number(ages.from);
    return ages.from == ages.to ? from : from + QLatin1Char('-') + QString::number(ages.to);
}

QString asKey(QString word)
{
    return word.replace(QLatin1Char(' '), QLatin1Char('-'));
}

QString timeWord(const QDateTime &time, int toleranceMs)
{
    QString word = time.toString(toleranceMs > 0 ? QStringLiteral("yyyy-MM-dd HH:mm:ss")
                                                 : QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
    if (time.timeSpec() == Qt::UTC)
        word += QLatin1String(" UTC");
    return word;
}

QString isoTime(const QDateTime &time, int toleranceMs)
{
    return time.toString(toleranceMs > 0 ? Qt::ISODate : Qt::ISODateWithMs);
}

QString twoDigits(qint64 number)
{
    return QString::number(number).rightJustified(2, QLatin1Char('0'));
}

QString durationWord(qint64 ms)
{
    const qint64 minutes = ms / 60000;
    if (minutes == 0)
        return QStringLiteral("%1.%2 s").arg(
            QString::number(ms / 1000), QString::number(ms / 100 % 10));
    if (minutes < 60)
        return QStringLiteral("%1 min %2 s")
            .arg(QString::number(minutes), twoDigits(ms / 1000 % 60));
    return QStringLiteral("%1 h %2 min")
        .arg(QString::number(minutes / 60), twoDigits(minutes % 60));
}

QString noFaceWord(const Decision &decision)
{
    return decision.noFace ? QStringLiteral("The sensor program counted no face.")
                           : QStringLiteral("The frame holds no complete face.");
}

QString evidenceWord(const DecidedFace &face)
{
    if (face.evidence == DecidedFace::Times)
        return {};
    return QStringLiteral("The times leave open whether %1 was restricted%2.")
        .arg(sequenceWord(face.sequence),
            QLatin1String(face.evidence == DecidedFace::Log ? "; the log tells"
                                                            : ", and nothing else tells"));
}

QString sentWord(const Decision &decision, const std::function<QString(int)> &contentWord)
{
    QStringList sent;
    QStringList restricted;
    for (const DecidedFace &face : decision.faces) {
        if (face.outcome == DecidedFace::Sent)
            sent << contentWord(face.sequence);
        else if (face.outcome == DecidedFace::Restricted)
            restricted << sequenceWord(face.sequence);
    }
    const QString comma = QStringLiteral(", ");
    if (!sent.isEmpty())
        return QLatin1String("Sent: ") + sent.join(comma);
    if (!restricted.isEmpty()) {
        restricted.removeDuplicates();
        return QStringLiteral("Nothing was sent: the restriction held %1 back.")
            .arg(restricted.join(comma));
    }
    return decision.faces.isEmpty() ? QStringLiteral("Nothing was sent: there is no face.")
                                    : QStringLiteral("Nothing was sent: no content fits.");
}

} // namespace Analysis
