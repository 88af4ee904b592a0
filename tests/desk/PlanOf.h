#pragma once

#include "detection/FaceEvaluation.h"
#include "tools/analysis/Decider.h"
#include "tools/analysis/Plan.h"

#include <QRegularExpression>

#include <array>

/// Plans and decisions as short texts.
namespace KrTest {

/// "#2 40-49 female default" for each content, separated by semicolons. A number that is left out
/// takes no part.
inline Analysis::Plan planOf(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("#(\\d+) (\\d+)-(\\d+) (male|female|both)( default)?"));
    static const std::array<Stage::StageColor, 4> colors{
        {{0xd9, 0x52, 0x7c}, {0x25, 0x63, 0xa8}, {0xe8, 0xc8, 0x30}, {0x1f, 0x8f, 0x8a}}};
    Analysis::Plan plan;
    auto matches = form.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const int number = match.captured(1).toInt();
        while (plan.entries.size() < number) {
            Analysis::PlannedContent entry;
            entry.number = plan.entries.size() + 1;
            entry.name = QStringLiteral("Content %1").arg(entry.number);
            entry.color = colors.at(static_cast<size_t>(entry.number - 1) % colors.size());
            entry.reason = PluginKrHvcP2::EntryReason::NoLinkingScreen;
            plan.entries.append(entry);
        }
        Analysis::PlannedContent &entry = plan.entries.last();
        entry.content = {number, match.captured(2).toInt(), match.captured(3).toInt(),
            PluginKrHvcP2::genderFromText(match.captured(4)), !match.captured(5).isEmpty(), {2}};
        entry.reason = PluginKrHvcP2::EntryReason::TakesPart;
        plan.contents.append(entry.content);
    }
    return plan;
}

/// "female 31 sent" for each face, separated by semicolons: gender ("?" for none), age ("?"
/// likewise), "sent", "restricted" or "cut". A face that nothing fits stays one.
inline Analysis::Decision decisionOf(const QString &text, const Analysis::Plan &plan)
{
    static const QRegularExpression form(
        QStringLiteral("(\\?|male|female) (\\?|\\d+) (sent|restricted|cut)"));
    Analysis::Decision decision;
    auto matches = form.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        Analysis::DecidedFace decided;
        decided.face.index = decision.faces.size();
        if (match.captured(1) != QLatin1String("?"))
            decided.face.gender
                = PluginKrHvcP2::Measured<int>{PluginKrHvcP2::genderFromText(match.captured(1))};
        if (match.captured(2) != QLatin1String("?"))
            decided.face.age = PluginKrHvcP2::Measured<int>{match.captured(2).toInt()};
        decided.evaluation = PluginKrHvcP2::evaluateFace(decided.face, plan.contents);
        if (decided.evaluation.match.isValid()) {
            decided.sequence = plan.contents.at(decided.evaluation.match.position).sequenceNumber;
            decided.outcome = match.captured(3) == QLatin1String("sent")
                ? Analysis::DecidedFace::Sent
                : match.captured(3) == QLatin1String("restricted")
                ? Analysis::DecidedFace::Restricted
                : Analysis::DecidedFace::Cut;
        }
        decision.faces.append(decided);
    }
    return decision;
}

} // namespace KrTest
