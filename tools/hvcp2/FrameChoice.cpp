#include "tools/hvcp2/FrameChoice.h"

#include <QRegularExpression>

#include <algorithm>

namespace Hvcp2 {

using Analysis::DecidedFace;
using Analysis::ReplayedFrame;

namespace {

const QString At = QStringLiteral("at");
const QString Number = QStringLiteral("frame");

/// What a clock on the wall showed; of two such times the difference does not depend on a zone.
QDateTime wallTime(const QDate &date, const QTime &time)
{
    return {date, time, Qt::UTC};
}

std::optional<GivenTime> givenTimeOfDay(const QString &text)
{
    GivenTime given;
    given.time = QTime::fromString(text, QStringLiteral("HH:mm"));
    given.precisionMs = 60000;
    if (!given.time.isValid()) {
        given.time = QTime::fromString(text, QStringLiteral("HH:mm:ss"));
        given.precisionMs = 1000;
    }
    return given.time.isValid() ? std::make_optional(given) : std::nullopt;
}

bool isSent(const ReplayedFrame &frame)
{
    const auto &faces = frame.decision.faces;
    return std::any_of(faces.cbegin(), faces.cend(),
        [](const DecidedFace &face) { return face.outcome == DecidedFace::Sent; });
}

bool isSameSecond(const QDateTime &a, const QDateTime &b)
{
    return a.date() == b.date() && QTime(0, 0).secsTo(a.time()) == QTime(0, 0).secsTo(b.time());
}

} // namespace

std::optional<GivenTime> givenTime(const QString &text)
{
    if (std::optional<GivenTime> given = givenTimeOfDay(text))
        return given;
    static const QRegularExpression form(
        QStringLiteral("^(\\d{4}-\\d\\d-\\d\\d)[ T](\\d\\d:\\d\\d(:\\d\\d(\\.\\d{1,3})?)?)"
                       "(Z|[+-]\\d\\d:?\\d\\d)?$"));
    const QRegularExpressionMatch match = form.match(text);
    GivenTime given;
    given.date = QDate::fromString(match.captured(1), Qt::ISODate);
    given.time = QTime::fromString(match.captured(2), Qt::ISODateWithMs);
    if (!given.date.isValid() || !given.time.isValid())
        return std::nullopt;
    if (match.capturedLength(5) == 0)
        return given;
    given.moment = QDateTime::fromString(
        QString(text).replace(QLatin1Char(' '), QLatin1Char('T')), Qt::ISODateWithMs);
    return given.moment.isValid() ? std::make_optional(given) : std::nullopt;
}

std::optional<FrameChoice> FrameChoice::fromOptions(const QCommandLineParser &given, QString *error)
{
    FrameChoice choice;
    if (given.isSet(At) && given.isSet(Number)) {
        *error = QStringLiteral("--at and --frame exclude each other.");
        return std::nullopt;
    }
    if (given.isSet(At)) {
        choice.m_timeText = given.value(At);
        choice.m_time = givenTime(choice.m_timeText);
        if (!choice.m_time) {
            *error = QStringLiteral("--at: \"%1\" is no time").arg(choice.m_timeText);
            return std::nullopt;
        }
    }
    if (given.isSet(Number)) {
        bool ok = false;
        const qint64 number = given.value(Number).toLongLong(&ok);
        if (!ok || number < 1) {
            *error = QStringLiteral("--frame: \"%1\" is no number of a frame")
                         .arg(given.value(Number));
            return std::nullopt;
        }
        choice.m_number = number;
    }
    return choice;
}

bool FrameChoice::take(const ReplayedFrame &frame)
{
    ++m_frames;
    if (m_time)
        return takeAtTime(frame);
    if (m_number) {
        if (frame.number == *m_number)
            m_chosen = frame;
        return !m_chosen;
    }
    const bool isFrameSent = isSent(frame);
    if (isFrameSent || !m_isSent)
        m_chosen = frame;
    m_isSent = m_isSent || isFrameSent;
    return true;
}

bool FrameChoice::takeAtTime(const ReplayedFrame &frame)
{
    const QDateTime &time = frame.decision.time;
    if (!m_chosen) {
        if (isReached(time))
            m_chosen = frame;
        return true;
    }
    if (!isSameSecond(time, m_chosen->decision.time))
        return false;
    ++m_neighbourCount;
    if (m_neighbours.size() < NamedNeighbours)
        m_neighbours.append(frame.number);
    return true;
}

bool FrameChoice::isReached(const QDateTime &time)
{
    if (!m_time->moment.isNull())
        return time >= m_time->moment;
    const QDateTime wall = wallTime(time.date(), time.time());
    if (m_time->date.isNull()) {
        m_time->date = wall.date();
        if (wallTime(m_time->date, m_time->time).addMSecs(m_time->precisionMs) <= wall)
            m_time->date = m_time->date.addDays(1);
    }
    return wall >= wallTime(m_time->date, m_time->time);
}

QString FrameChoice::objection() const
{
    if (m_frames == 0)
        return QStringLiteral("there are no frames");
    if (m_number)
        return QStringLiteral("there are only %1 frames").arg(m_frames);
    return QStringLiteral("no frame is of %1 or later").arg(m_timeText);
}

QCommandLineOption atOption()
{
    return {At, QStringLiteral("The first frame at or after TIME."), QStringLiteral("TIME")};
}

QCommandLineOption frameOption()
{
    return {Number, QStringLiteral("Frame N, counted from 1."), QStringLiteral("N")};
}

} // namespace Hvcp2
