#include "tools/hvcp2/ReplayOutput.h"

#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Csv.h"
#include "tools/hvcp2/Words.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Hvcp2 {

using namespace Analysis;

namespace {

constexpr int Indent = 2;
constexpr int FrameColumns = 8;
constexpr int FaceColumns = 4;
constexpr int ScoreColumns = 6;
constexpr int ScoreDigits = 6;

QString scoreText(const DecidedFace &face)
{
    return QString::number(face.score(), 'g', ScoreDigits);
}

QString startLine(const QString &time, const QString &frame, const QString &face,
    const QString &score, const QString &content)
{
    const QString gap(Indent, QLatin1Char(' '));
    const QString start = gap + time + gap + frame.rightJustified(FrameColumns) + gap
        + face.rightJustified(FaceColumns) + gap + score.rightJustified(ScoreColumns) + gap;
    return start + fitted(content, LineColumns - start.size());
}

QString countText(qint64 count, const char *one, const char *several)
{
    return QString::number(count) + QLatin1Char(' ') + QLatin1String(count == 1 ? one : several);
}

QString spanText(const ReplaySummary &summary)
{
    const auto word
        = [&](const QDateTime &time) { return timeWord(time, summary.timeToleranceMs()); };
    QString text = countText(summary.frames(), "frame", "frames");
    if (summary.frames() > 0)
        text += QStringLiteral(", %1 to %2").arg(word(summary.first()), word(summary.last()));
    return text;
}

QString differenceText(const DifferentFrame &difference)
{
    const QString place = printable(difference.position.file) + QLatin1Char(':')
        + QString::number(difference.position.line);
    return QStringLiteral("frame %1, %2, %3: %4; in the log %5")
        .arg(QString::number(difference.number),
            timeWord(difference.time, difference.timeToleranceMs), place,
            requestsWord(difference.expected), requestsWord(difference.logged));
}

/// Why log and plan can differ: what the log gives away, and then what it cannot tell.
QStringList explanations(const Plan &plan, const ReplayEnd &end)
{
    QStringList texts;
    const QVector<int> strangers = end.summary.strangers();
    if (!strangers.isEmpty()) {
        QStringList numbers;
        for (const int number : strangers)
            numbers << QLatin1Char('#') + QString::number(number);
        texts << QStringLiteral("another stage or screen: no content of this one is %1")
                     .arg(numbers.join(QLatin1String(", ")));
    }
    if (end.otherLimitMs) {
        texts << QStringLiteral("another event-sending-limit: %1 ms in the log, %2 ms here")
                     .arg(*end.otherLimitMs)
                     .arg(plan.settings.eventSendingLimit);
    }
    if (end.summary.mostAtOnce() > plan.settings.concurrent) {
        texts << QStringLiteral("another concurrent: up to %1 at once in the log, %2 here")
                     .arg(end.summary.mostAtOnce())
                     .arg(plan.settings.concurrent);
    }
    if (end.decisionsWithoutFrame > 0 || end.unreadable > 0) {
        texts << QStringLiteral("missing records: %1, %2")
                     .arg(countText(end.unreadable, "place that cannot be read",
                              "places that cannot be read"),
                         countText(end.decisionsWithoutFrame, "decision without its frame",
                             "decisions without their frames"));
    }
    texts << QStringLiteral("what a log does not tell: another stage or setting at that time, a new"
                            " start of the plug-in, which then remembers no starts, or a start by"
                            " hand");
    return texts;
}

QJsonObject startJson(const Plan &plan, const ReplayedFrame &frame, const DecidedFace &face)
{
    return {{QStringLiteral("frame"), frame.number},
        {QStringLiteral("time"), isoTime(frame.decision.time, frame.timeToleranceMs)},
        {QStringLiteral("sequence"), face.sequence},
        {QStringLiteral("name"), plan.name(face.sequence)},
        {QStringLiteral("face"), face.face.index}, {QStringLiteral("score"), face.score()}};
}

QJsonValue logJson(const Plan &plan, const ReplayEnd &end)
{
    const ReplaySummary &summary = end.summary;
    if (summary.loggedFrames() == 0)
        return {};
    QJsonArray differences;
    for (const DifferentFrame &difference : summary.differences()) {
        differences.append(QJsonObject{{QStringLiteral("frame"), difference.number},
            {QStringLiteral("source"), difference.position.file},
            {QStringLiteral("line"), difference.position.line},
            {QStringLiteral("time"), isoTime(difference.time, difference.timeToleranceMs)},
            {QStringLiteral("expected"), requestsJson(difference.expected)},
            {QStringLiteral("logged"), requestsJson(difference.logged)}});
    }
    const bool differs = summary.differing() > 0;
    return QJsonObject{{QStringLiteral("frames"), summary.loggedFrames()},
        {QStringLiteral("requests"), summary.loggedRequests()},
        {QStringLiteral("agrees"), !differs}, {QStringLiteral("differing"), summary.differing()},
        {QStringLiteral("explainable"), summary.explainable()},
        {QStringLiteral("differences"), differences},
        {QStringLiteral("explanations"),
            differs ? QJsonArray::fromStringList(explanations(plan, end)) : QJsonArray()},
        {QStringLiteral("decisionsWithoutFrame"), end.decisionsWithoutFrame}};
}

QJsonArray sequencesJson(const Plan &plan, const ReplaySummary &summary)
{
    QJsonArray sequences;
    for (const PluginKrHvcP2::DetectionContent &content : plan.contents) {
        const SequenceCounts counts = summary.countsOf(content.sequenceNumber);
        sequences.append(QJsonObject{{QStringLiteral("number"), content.sequenceNumber},
            {QStringLiteral("name"), plan.name(content.sequenceNumber)},
            {QStringLiteral("sent"), counts.sent},
            {QStringLiteral("restricted"), counts.restricted},
            {QStringLiteral("cut"), counts.cut}});
    }
    return sequences;
}

} // namespace

void ReplayText::begin()
{
    console().out << console().paint.heading(screenWord(plan())) << "\n\n";
}

void ReplayText::add(const ReplayedFrame &frame)
{
    const QString time = timeWord(frame.decision.time, frame.timeToleranceMs);
    for (const DecidedFace &face : frame.decision.faces) {
        if (face.outcome != DecidedFace::Sent)
            continue;
        if (!m_hasHeading) {
            const QString heading = startLine(QStringLiteral("Time").leftJustified(time.size()),
                QStringLiteral("Frame"), QStringLiteral("Face"), QStringLiteral("Score"),
                QStringLiteral("Sequence"));
            console().out << console().paint.heading(heading) << '\n';
            m_hasHeading = true;
        }
        console().out << startLine(time, QString::number(frame.number),
            QString::number(face.face.index), scoreText(face), contentWord(plan(), face.sequence))
                      << '\n';
    }
}

void ReplayText::end(const ReplayEnd &end)
{
    const ReplaySummary &summary = end.summary;
    if (m_hasHeading)
        console().out << '\n';
    console().out << wrapped(spanText(summary), 0) << '\n'
                  << sequencesText(summary) << '\n'
                  << settingsWord(plan()) << '\n';
    if (summary.toldByLog() > 0) {
        console().out << wrapped(
            QStringLiteral("What came of %1 is taken from the log: the times leave it open.")
                .arg(countText(summary.toldByLog(), "request", "requests")),
            0);
    }
    if (summary.unsure() > 0) {
        console().out << wrapped(
            QStringLiteral("What came of %1 cannot be told: the times are whole seconds, or go"
                           " back. The likelier is shown.")
                .arg(countText(summary.unsure(), "request", "requests")),
            0);
    }
    if (summary.loggedFrames() > 0)
        printLog(end);
    if (summary.sent() == 0)
        console().out << "Nothing was started.\n";
    else
        console().out << countText(summary.sent(), "start", "starts") << '\n';
}

QString ReplayText::sequencesText(const ReplaySummary &summary)
{
    if (plan().contents.isEmpty())
        return QStringLiteral("  No content takes part.\n");
    TextTable table;
    table.addRow({QStringLiteral("Sequence"), QStringLiteral("Started"),
        QStringLiteral("Restricted"), QStringLiteral("Cut")});
    for (int column = 1; column <= 3; ++column)
        table.alignRight(column);
    table.limit(0, 40);
    for (const PluginKrHvcP2::DetectionContent &content : plan().contents) {
        const SequenceCounts counts = summary.countsOf(content.sequenceNumber);
        table.addRow({contentWord(plan(), content.sequenceNumber), QString::number(counts.sent),
            QString::number(counts.restricted), QString::number(counts.cut)});
    }
    return table.toText(console().paint);
}

void ReplayText::printLog(const ReplayEnd &end)
{
    const ReplaySummary &summary = end.summary;
    if (summary.explainable() > 0) {
        console().out << wrapped(
            QStringLiteral("In the log %1 came out otherwise, of which other starts before or whole"
                           " seconds can be the reason.")
                .arg(countText(summary.explainable(), "frame", "frames")),
            0);
    }
    if (summary.differing() == 0) {
        console().out << console().paint.good(
            QStringLiteral("The log says the same: %1 for %2.")
                .arg(countText(summary.loggedRequests(), "request", "requests"),
                    countText(summary.loggedFrames(), "frame", "frames")))
                      << '\n';
        return;
    }
    console().out << console().paint.warning(
        QStringLiteral("The log says otherwise about %1 of %2 frames:")
            .arg(summary.differing())
            .arg(summary.loggedFrames()))
                  << '\n';
    for (const DifferentFrame &difference : summary.differences())
        console().out << wrapped(differenceText(difference), Indent);
    const qint64 more = summary.differing() - summary.differences().size();
    if (more > 0)
        console().out << "  and " << more << " more\n";
    console().out << "It can differ because of\n";
    const QStringList texts = explanations(plan(), end);
    for (const QString &text : texts)
        console().out << wrapped(text, Indent);
}

void ReplayCsv::begin()
{
    console().out << "frame,time,face,sequence,score,outcome\n";
}

void ReplayCsv::add(const ReplayedFrame &frame)
{
    const QString time = isoTime(frame.decision.time, frame.timeToleranceMs);
    for (const DecidedFace &face : frame.decision.faces) {
        if (face.outcome == DecidedFace::NothingFits)
            continue;
        console().out << csvLine(
            {QString::number(frame.number), time, QString::number(face.face.index),
                QString::number(face.sequence), scoreText(face), outcomeWord(face.outcome)});
    }
}

void ReplayCsv::end(const ReplayEnd &end)
{
    if (end.summary.differing() > 0) {
        console().error << "hvcp2 replay: the log says otherwise about " << end.summary.differing()
                        << " of " << end.summary.loggedFrames()
                        << " frames; without --csv they are named\n";
    }
}

void ReplayJson::begin()
{
    console().out << "{\n    \"starts\": [";
}

void ReplayJson::add(const ReplayedFrame &frame)
{
    for (const DecidedFace &face : frame.decision.faces) {
        if (face.outcome != DecidedFace::Sent)
            continue;
        const QJsonDocument start(startJson(plan(), frame, face));
        console().out << (m_hasStart ? ",\n        " : "\n        ")
                      << QString::fromUtf8(start.toJson(QJsonDocument::Compact));
        m_hasStart = true;
    }
}

void ReplayJson::end(const ReplayEnd &end)
{
    const ReplaySummary &summary = end.summary;
    const QJsonObject rest{
        {QStringLiteral("file"), plan().fileName},
        {QStringLiteral("title"), plan().title},
        {QStringLiteral("screen"), plan().screenId},
        {QStringLiteral("screenName"), plan().screenName},
        {QStringLiteral("concurrent"), plan().settings.concurrent},
        {QStringLiteral("eventSendingLimit"), plan().settings.eventSendingLimit},
        {QStringLiteral("frames"), summary.frames()},
        {QStringLiteral("first"), timeJson(summary.first(), summary.timeToleranceMs())},
        {QStringLiteral("last"), timeJson(summary.last(), summary.timeToleranceMs())},
        {QStringLiteral("sequences"), sequencesJson(plan(), summary)},
        {QStringLiteral("toldByLog"), summary.toldByLog()},
        {QStringLiteral("unsure"), summary.unsure()},
        {QStringLiteral("unreadable"), end.unreadable},
        {QStringLiteral("log"), logJson(plan(), end)},
    };
    console().out << (m_hasStart ? "\n    ],\n" : "],\n")
                  << QString::fromUtf8(QJsonDocument(rest).toJson()).mid(2); // behind its "{\n"
}

} // namespace Hvcp2
