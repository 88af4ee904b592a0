#include "tools/hvcp2/FrameCsv.h"

#include "tools/hvcp2/Csv.h"
#include "tools/hvcp2/FrameReport.h"
#include "tools/hvcp2/Words.h"

namespace Hvcp2 {

using namespace Analysis;

namespace {

QString known(bool isKnown, int number)
{
    return isKnown ? QString::number(number) : QString();
}

QStringList faceCells(const DecidedFace &face)
{
    const int direction = face.face.directionValue();
    return {
        QString::number(face.face.index),
        genderWord(static_cast<PluginKrHvcP2::Gender>(face.evaluation.gender)),
        known(face.evaluation.age >= 0, face.evaluation.age),
        QString::number(face.face.size()),
        known(direction != PluginKrHvcP2::UnknownDirectionValue, direction),
        csvNumber(face.prominence),
        csvNumber(face.evaluation.match.bonus),
        csvNumber(face.score()),
        known(face.sequence > 0, face.sequence),
        outcomeWord(face.outcome),
        QString::number(face.remainingMs),
    };
}

} // namespace

QString frameCsv(const Plan &plan, const FrameChoice &choice)
{
    const ReplayedFrame &frame = *choice.chosen();
    const QStringList frameCells{
        QString::number(frame.number), isoTime(frame.decision.time, frame.timeToleranceMs)};
    QString table = csvLine({QStringLiteral("frame"), QStringLiteral("time"),
        QStringLiteral("face"), QStringLiteral("gender"), QStringLiteral("age"),
        QStringLiteral("size"), QStringLiteral("direction"), QStringLiteral("baseScore"),
        QStringLiteral("bonus"), QStringLiteral("score"), QStringLiteral("sequence"),
        QStringLiteral("outcome"), QStringLiteral("heldForMs"), QStringLiteral("content"),
        QStringLiteral("name"), QStringLiteral("reason")});
    for (const DecidedFace &face : frame.decision.faces) {
        const QStringList cells = frameCells + faceCells(face);
        int position = 0; // in the table of contents
        for (const PlannedContent &entry : plan.entries) {
            const QString reason = entry.takesPart()
                ? reasonKey(face.evaluation.reasons.at(position++))
                : asKey(reasonWord(entry.reason));
            table
                += csvLine(cells + QStringList{QString::number(entry.number), entry.name, reason});
        }
    }
    return table;
}

} // namespace Hvcp2
