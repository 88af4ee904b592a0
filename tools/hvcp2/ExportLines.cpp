#include "tools/hvcp2/ExportLines.h"

#include "tools/analysis/ReportText.h"
#include "tools/hvcp2/Words.h"

#include <QFileInfo>
#include <QJsonArray>

namespace Hvcp2 {

using namespace Analysis;
using PluginKrHvcP2::FaceResult;
using PluginKrHvcP2::SensorFrame;
using PluginKrHvcP2::SensorOutputParser;

namespace {

QJsonValue jsonOf(const std::optional<int> &number)
{
    return number ? QJsonValue(*number) : QJsonValue();
}

QJsonArray jsonOf(const QVector<int> &numbers)
{
    QJsonArray array;
    for (const int number : numbers)
        array.append(number);
    return array;
}

void insertBox(const FaceResult &face, QJsonObject *line)
{
    if (!face.box)
        return;
    line->insert(QStringLiteral("x"), face.box->value.x);
    line->insert(QStringLiteral("y"), face.box->value.y);
    line->insert(QStringLiteral("size"), face.box->value.size);
    line->insert(QStringLiteral("confidence"), face.box->confidence);
}

void insertAngles(const FaceResult &face, QJsonObject *line)
{
    if (!face.angles)
        return;
    line->insert(QStringLiteral("leftRight"), jsonOf(face.angles->value.leftRight));
    line->insert(QStringLiteral("upDown"), jsonOf(face.angles->value.upDown));
    line->insert(QStringLiteral("roll"), jsonOf(face.angles->value.roll));
    line->insert(QStringLiteral("directionConfidence"), face.angles->confidence);
}

void insertAge(const FaceResult &face, QJsonObject *line)
{
    if (!face.age)
        return;
    line->insert(QStringLiteral("age"), face.age->value);
    line->insert(QStringLiteral("ageConfidence"), face.age->confidence);
    line->insert(QStringLiteral("ageMarked"), face.age->marked);
}

void insertGender(const FaceResult &face, QJsonObject *line)
{
    if (!face.gender)
        return;
    line->insert(QStringLiteral("gender"),
        genderWord(static_cast<PluginKrHvcP2::Gender>(face.gender->value)));
    line->insert(QStringLiteral("genderConfidence"), face.gender->confidence);
    line->insert(QStringLiteral("genderMarked"), face.gender->marked);
}

QString numbered(const char *what, int number)
{
    return QLatin1Char('/') + QLatin1String(what) + QLatin1Char('/') + QString::number(number);
}

} // namespace

ExportLines::ExportLines(const std::optional<Plan> &plan, std::optional<int> screen)
    : m_screen(screen)
{
    if (!plan)
        return;
    m_limitMs = plan->settings.eventSendingLimit;
    m_decider.emplace(*plan);
}

QVector<QJsonObject> ExportLines::linesOf(const Entry &entry)
{
    QVector<QJsonObject> lines;
    switch (entry.kind) {
    case Entry::Unknown:
        break;
    case Entry::Frame:
        addFrame(entry, &lines);
        break;
    case Entry::Determined:
        lines.append(newLine(entry, "determined", {}));
        lines.last().insert(QStringLiteral("sequences"), jsonOf(entry.numbers));
        break;
    case Entry::Restricted:
        lines.append(newLine(entry, "restricted", {}));
        lines.last().insert(QStringLiteral("sequence"), entry.number);
        lines.last().insert(QStringLiteral("limitMs"), entry.limitMs);
        break;
    case Entry::Started:
        lines.append(newLine(entry, "started", {}));
        break;
    case Entry::Stopped:
        lines.append(newLine(entry, "stopped", {}));
        break;
    case Entry::Error:
        lines.append(newLine(entry, "error", {}));
        lines.last().insert(QStringLiteral("message"), entry.text);
        break;
    }
    return lines;
}

/// "3/KrHvcP2Log_20180201.txt/1234"
QString ExportLines::idOf(const Position &position) const
{
    return QStringLiteral("%1/%2/%3")
        .arg(m_screen ? QString::number(*m_screen) : QStringLiteral("-"),
            QFileInfo(position.file).fileName(), QString::number(position.offset));
}

QJsonObject ExportLines::newLine(const Entry &entry, const char *type, const QString &part) const
{
    return {
        {QStringLiteral("id"), QString(idOf(entry.position) + part)},
        {QStringLiteral("type"), QLatin1String(type)},
        {QStringLiteral("screen"), jsonOf(m_screen)},
        {QStringLiteral("file"), QFileInfo(entry.position.file).fileName()},
        {QStringLiteral("line"), entry.position.line},
        {QStringLiteral("offset"), entry.position.offset},
        {QStringLiteral("time"), timeJson(entry.time, entry.timeToleranceMs)},
    };
}

void ExportLines::addFrame(const Entry &entry, QVector<QJsonObject> *lines)
{
    const SensorFrame frame = SensorOutputParser::parseUnseen(entry.text, entry.time);
    QJsonObject line = newLine(entry, "frame", {});
    line.insert(QStringLiteral("faces"), frame.faces.size());
    lines->append(line);
    for (int i = 0; i < frame.faces.size(); ++i) {
        const FaceResult &face = frame.faces.at(i);
        QJsonObject faceLine = newLine(entry, "face", numbered("face", i));
        faceLine.insert(QStringLiteral("frame"), idOf(entry.position));
        faceLine.insert(QStringLiteral("index"), face.index);
        insertBox(face, &faceLine);
        insertAngles(face, &faceLine);
        insertAge(face, &faceLine);
        insertGender(face, &faceLine);
        lines->append(faceLine);
    }
    if (frame.errorSeen)
        addFailures(entry, lines);
    if (m_decider && entry.isRecorded())
        addDecision(entry, frame, lines);
}

void ExportLines::addFailures(const Entry &entry, QVector<QJsonObject> *lines) const
{
    int count = 0;
    const QStringList failures = failuresIn(entry.text);
    for (const QString &text : failures) {
        lines->append(newLine(entry, "sensorError", numbered("failure", count++)));
        lines->last().insert(QStringLiteral("message"), text);
    }
}

void ExportLines::addDecision(
    const Entry &entry, const SensorFrame &frame, QVector<QJsonObject> *lines)
{
    QVector<int> numbers;
    int held = 0;
    const Decision decision = m_decider->decide(frame, entry.time);
    for (const DecidedFace &face : decision.faces) {
        const bool isRestricted = face.outcome == DecidedFace::Restricted;
        if (isRestricted || face.outcome == DecidedFace::Sent)
            numbers.append(face.sequence);
        if (!isRestricted)
            continue;
        lines->append(newLine(entry, "restricted", numbered("restricted", held++)));
        lines->last().insert(QStringLiteral("sequence"), face.sequence);
        lines->last().insert(QStringLiteral("limitMs"), m_limitMs);
    }
    if (numbers.isEmpty())
        return;
    lines->append(newLine(entry, "determined", QStringLiteral("/determined")));
    lines->last().insert(QStringLiteral("sequences"), jsonOf(numbers));
}

} // namespace Hvcp2
