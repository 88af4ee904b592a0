#include "demo/desk/SensorState.h"

#include <QCoreApplication>

#include <algorithm>

namespace Desk {

namespace {

constexpr qint64 LeastPatienceMs = 2000;
constexpr int PatienceFrames = 3;

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::SensorState", text);
}

/// How long nothing has come, in the whole seconds in which it is counted.
QString silenceText(qint64 ageMs)
{
    return ageMs < 60000 ? tr("%1 s").arg(ageMs / 1000) : spanText(ageMs);
}

/// What may be the matter when nothing comes.
QStringList explanations(const SensorState &state)
{
    QStringList lines;
    if (state.intervalMs > 0)
        lines << tr("There should be one every %1").arg(spanText(state.intervalMs));
    if (state.restarts > 0)
        lines << tr("Restarts of the sensor program: %1").arg(state.restarts);
    return lines;
}

bool isStale(const SensorState &state, const std::optional<qint64> &ageMs)
{
    return state.isLive && ageMs && *ageMs >= state.patienceMs();
}

} // namespace

qint64 SensorState::patienceMs() const
{
    return std::max<qint64>(LeastPatienceMs, qint64{PatienceFrames} * intervalMs);
}

SensorMessage sensorMessage(
    const FaceMarks &marks, const SensorState &state, const std::optional<qint64> &ageMs)
{
    if (!ageMs)
        return {SensorMessage::Waiting, tr("Waiting for the first frame"), explanations(state)};

    const QString silence
        = isStale(state, ageMs) ? tr("No frame for %1").arg(silenceText(*ageMs)) : QString();
    if (marks.hasFailed) {
        QStringList lines{marks.failure};
        if (!silence.isEmpty())
            lines << silence << explanations(state);
        return {SensorMessage::Failure, tr("The sensor program reports a failure"), lines};
    }
    if (!silence.isEmpty())
        return {SensorMessage::Stale, silence, explanations(state)};
    if (marks.count() > 0)
        return {};
    return {SensorMessage::Nobody,
        marks.nobody ? tr("Nobody is there") : tr("There is no face in this frame"), {}};
}

QString spokenText(const FaceMarks &marks, const SensorMessage &message)
{
    QStringList parts;
    if (message.kind != SensorMessage::None)
        parts << message.title << message.lines;
    if (marks.count() > 0)
        parts << tr("Faces: %1").arg(marks.count());
    for (const FaceMark &mark : marks.faces) {
        if (mark.hasDecided()) {
            parts << tr("%1, %2: #%3 %4")
                         .arg(mark.gender.text, mark.age.text, QString::number(mark.sequence),
                             mark.content);
        }
    }
    return parts.join(QLatin1String(". "));
}

QString spanText(qint64 ms)
{
    const qint64 minutes = ms / 60000;
    if (minutes < 1)
        return tr("%1 s").arg(static_cast<double>(ms) / 1000, 0, 'g', 3);
    if (minutes < 60)
        return tr("%1 min").arg(minutes);
    return tr("%1 h %2 min")
        .arg(QString::number(minutes / 60),
            QString::number(minutes % 60).rightJustified(2, QLatin1Char('0')));
}

} // namespace Desk
