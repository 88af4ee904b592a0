#include "tools/hvcp2/FrameReport.h"

#include "detection/SensorOutputParser.h"
#include "tools/analysis/Bonus.h"
#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Words.h"

#include <QJsonArray>

#include <algorithm>

namespace Hvcp2 {

using namespace Analysis;
using PluginKrHvcP2::ContentReason;
using PluginKrHvcP2::FaceEvaluation;

namespace {

constexpr int FacesInATable = 5;
constexpr int LeastLabelColumns = 12;
constexpr int MostLabelColumns = 28;
constexpr int MaxFailureLines = 5;
constexpr int Indent = 2;

/// Of whole seconds a duration is not known better.
QString heldText(const DecidedFace &face, int toleranceMs)
{
    if (face.remainingMs <= 0)
        return {};
    const QString duration = durationWord(face.remainingMs);
    return toleranceMs > 0 ? QLatin1Char('~') + duration : duration;
}

/// One column for each of @p faces, and what they are called in front.
class FaceTable
{
public:
    FaceTable(const QVector<DecidedFace> &faces, const Plan &plan)
        : m_faces(faces)
        , m_plan(plan)
    { }

    QString toText(int toleranceMs, const Paint &paint);

private:
    template <typename Cell>
    void addRow(const QString &label, Cell cell)
    {
        QStringList cells{label};
        for (const DecidedFace &face : m_faces)
            cells << cell(face);
        m_rows.append(cells);
    }

    /// Leaves the row out when there is nothing in it.
    template <typename Cell>
    void addRowIfAny(const QString &label, Cell cell)
    {
        addRow(label, cell);
        const QStringList &row = m_rows.constLast();
        if (std::all_of(row.cbegin() + 1, row.cend(), [](const QString &s) { return s.isEmpty(); }))
            m_rows.removeLast();
    }

    void addBlankRow();
    void addProminence();
    void addContents();
    void addScore();
    void addOutcome(int toleranceMs);
    int labelColumns() const;

    const QVector<DecidedFace> m_faces;
    const Plan &m_plan;
    QVector<QStringList> m_rows;
};

void FaceTable::addBlankRow()
{
    addRow(QString(), [](const DecidedFace &) { return QString(); });
}

void FaceTable::addProminence()
{
    addRow(QStringLiteral("Gender"), [](const DecidedFace &f) { return genderWord(f.evaluation); });
    addRow(QStringLiteral("Age"), [](const DecidedFace &f) { return ageWord(f.evaluation); });
    addRow(QStringLiteral("Size"),
        [](const DecidedFace &f) { return QString::number(f.face.size()); });
    addRow(QStringLiteral("  place"),
        [](const DecidedFace &f) { return QString::number(f.sizeRank); });
    addRow(QStringLiteral("Direction"), [](const DecidedFace &f) { return directionWord(f.face); });
    addRow(QStringLiteral("  place"),
        [](const DecidedFace &f) { return QString::number(f.directionRank); });
    addRow(
        QStringLiteral("Base score"), [](const DecidedFace &f) { return scoreWord(f.prominence); });
}

void FaceTable::addContents()
{
    for (int position = 0; position < m_plan.contents.size(); ++position) {
        addRow(contentWord(m_plan, m_plan.contents.at(position).sequenceNumber),
            [position](const DecidedFace &face) {
                return QString::fromLatin1(wordsOf(face.evaluation.reasons.at(position)).word);
            });
    }
}

void FaceTable::addScore()
{
    const auto part = [this](double Bonus::*which) {
        return [this, which](const DecidedFace &face) {
            return bonusWord(bonusOf(face, m_plan.contents).*which);
        };
    };
    addRowIfAny(QStringLiteral("Bonus"), part(&Bonus::plain));
    addRowIfAny(QStringLiteral("  gender*"), part(&Bonus::genderMark));
    addRowIfAny(QStringLiteral("  age*"), part(&Bonus::ageMark));
    addRow(QStringLiteral("Score"), [](const DecidedFace &f) { return scoreWord(f.score()); });
}

void FaceTable::addOutcome(int toleranceMs)
{
    addRow(QStringLiteral("Sequence"), [](const DecidedFace &face) {
        return face.sequence > 0 ? sequenceWord(face.sequence) : QStringLiteral("none");
    });
    addRowIfAny(QStringLiteral("Outcome"), [](const DecidedFace &face) {
        return face.sequence > 0 ? outcomeWord(face.outcome) : QString();
    });
    addRowIfAny(QStringLiteral("  held for"),
        [toleranceMs](const DecidedFace &face) { return heldText(face, toleranceMs); });
}

/// What the other columns leave of a line.
int FaceTable::labelColumns() const
{
    int columns = LineColumns - Indent;
    for (int column = 1; column <= m_faces.size(); ++column) {
        int width = 0;
        for (const QStringList &row : m_rows)
            width = qMax(width, columnsOf(row.at(column)));
        columns -= width + Indent;
    }
    return qBound(LeastLabelColumns, columns, MostLabelColumns);
}

QString FaceTable::toText(int toleranceMs, const Paint &paint)
{
    m_rows.clear();
    addRow(QStringLiteral("In order"),
        [](const DecidedFace &face) { return QStringLiteral("face %1").arg(face.face.index); });
    addProminence();
    addBlankRow();
    addContents();
    if (!m_plan.contents.isEmpty())
        addBlankRow();
    addScore();
    addOutcome(toleranceMs);

    TextTable table;
    for (const QStringList &row : qAsConst(m_rows))
        table.addRow(row);
    table.limit(0, labelColumns());
    return table.toText(paint);
}

QString headingText(const Plan &plan, const ReplayedFrame &frame, const Paint &paint)
{
    const QString place = QStringLiteral("%1:%2").arg(
        printable(frame.position.file), QString::number(frame.position.line));
    return paint.heading(screenWord(plan))
        + QStringLiteral("\nFrame %1, %2, %3\n\n")
              .arg(QString::number(frame.number),
                  timeWord(frame.decision.time, frame.timeToleranceMs), place);
}

/// What the sensor program reports in the place of faces, or beside them.
QString reportText(const ReplayedFrame &frame, const Paint &paint)
{
    QString text;
    if (frame.decision.errorSeen) {
        text += paint.warning(QStringLiteral("The sensor program reported a failure:"))
            + QLatin1Char('\n');
        const QStringList lines
            = PluginKrHvcP2::SensorOutputParser::plainText(frame.text).split(QLatin1Char('\n'));
        const QStringList shown = lines.mid(0, MaxFailureLines);
        for (const QString &line : shown) {
            text += QLatin1String("  ") + fitted(printable(line), LineColumns - Indent)
                + QLatin1Char('\n');
        }
        if (lines.size() > MaxFailureLines)
            text += QStringLiteral("  and %1 more lines\n").arg(lines.size() - MaxFailureLines);
        text += QLatin1Char('\n');
    }
    if (!frame.decision.faces.isEmpty())
        return text;
    return text + noFaceWord(frame.decision) + QLatin1String("\n\n");
}

QString facesText(const Plan &plan, const ReplayedFrame &frame, const Paint &paint)
{
    const QVector<DecidedFace> &faces = frame.decision.faces;
    QString text;
    for (int first = 0; first < faces.size(); first += FacesInATable) {
        text
            += FaceTable(faces.mid(first, FacesInATable), plan).toText(frame.timeToleranceMs, paint)
            + QLatin1Char('\n');
    }
    return text;
}

/// The words that the tables have for reasons, each once.
QString legendText(const Plan &plan, const ReplayedFrame &frame)
{
    QString text;
    if (!frame.decision.faces.isEmpty())
        text += QStringLiteral(
            "  place      the higher, the larger, or the straighter: half of that counts\n");
    bool hasMark = false;
    for (const ContentReasonWords &words : ContentReasons) {
        const QString word = QString::fromLatin1(words.word);
        bool occurs = false;
        for (const DecidedFace &face : frame.decision.faces) {
            occurs = occurs || face.evaluation.reasons.contains(words.reason);
            hasMark = hasMark || face.evaluation.ageMarked || face.evaluation.genderMarked;
        }
        if (!occurs || text.contains(QLatin1String("  ") + word.leftJustified(11)))
            continue;
        text += QLatin1String("  ") + word.leftJustified(11) + QString::fromLatin1(words.meaning)
            + QLatin1Char('\n');
    }
    if (hasMark)
        text += QStringLiteral("  *          the sensor has settled on it\n");
    for (const PlannedContent &entry : plan.entries) {
        if (!entry.takesPart())
            text += QStringLiteral("  %1 is not in the table: %2\n")
                        .arg(contentWord(plan, entry.number), reasonWord(entry.reason));
    }
    return text.isEmpty() ? text : text + QLatin1Char('\n');
}

QString neighboursText(const FrameChoice &choice)
{
    if (choice.neighbourCount() == 0)
        return {};
    QStringList numbers;
    for (const qint64 number : choice.neighbours())
        numbers << QString::number(number);
    QString text = QLatin1String("Of the same second: frame ") + numbers.join(QLatin1String(", "));
    const qint64 more = choice.neighbourCount() - choice.neighbours().size();
    if (more > 0)
        text += QStringLiteral(" and %1 more").arg(more);
    return wrapped(text, 0);
}

QJsonValue orNull(bool isKnown, const QJsonValue &value)
{
    return isKnown ? value : QJsonValue();
}

QString evidenceKey(DecidedFace::Evidence evidence)
{
    switch (evidence) {
    case DecidedFace::Times:
        return QStringLiteral("times");
    case DecidedFace::Log:
        return QStringLiteral("log");
    case DecidedFace::Likelihood:
        return QStringLiteral("likelihood");
    }
    return {};
}

QJsonArray contentsJson(const Plan &plan, const FaceEvaluation &evaluation)
{
    QJsonArray contents;
    int position = 0; // in the table
    for (const PlannedContent &entry : plan.entries) {
        QJsonObject content{{QStringLiteral("number"), entry.number},
            {QStringLiteral("inTable"), entry.takesPart()}, {QStringLiteral("taken"), false},
            {QStringLiteral("reason"), asKey(reasonWord(entry.reason))}};
        if (entry.takesPart()) {
            const ContentReason reason = evaluation.reasons.at(position++);
            content[QStringLiteral("reason")] = reasonKey(reason);
            content[QStringLiteral("taken")] = isTaken(reason);
        }
        contents.append(content);
    }
    return contents;
}

QJsonObject faceJson(const Plan &plan, const DecidedFace &face)
{
    const FaceEvaluation &evaluation = face.evaluation;
    const Bonus bonus = bonusOf(face, plan.contents);
    const int direction = face.face.directionValue();
    const bool hasSequence = face.sequence > 0;
    return {
        {QStringLiteral("index"), face.face.index},
        {QStringLiteral("gender"),
            genderWord(static_cast<PluginKrHvcP2::Gender>(evaluation.gender))},
        {QStringLiteral("genderMarked"), evaluation.genderMarked},
        {QStringLiteral("age"), orNull(evaluation.age >= 0, evaluation.age)},
        {QStringLiteral("ageMarked"), evaluation.ageMarked},
        {QStringLiteral("size"), face.face.size()},
        {QStringLiteral("sizeRank"), face.sizeRank},
        {QStringLiteral("direction"),
            orNull(direction != PluginKrHvcP2::UnknownDirectionValue, direction)},
        {QStringLiteral("directionRank"), face.directionRank},
        {QStringLiteral("baseScore"), face.prominence},
        {QStringLiteral("contents"), contentsJson(plan, evaluation)},
        {QStringLiteral("bonus"), evaluation.match.bonus},
        {QStringLiteral("bonusOfFit"), bonus.plain},
        {QStringLiteral("bonusOfGenderMark"), bonus.genderMark},
        {QStringLiteral("bonusOfAgeMark"), bonus.ageMark},
        {QStringLiteral("score"), face.score()},
        {QStringLiteral("sequence"), orNull(hasSequence, face.sequence)},
        {QStringLiteral("outcome"), outcomeWord(face.outcome)},
        {QStringLiteral("evidence"), orNull(hasSequence, evidenceKey(face.evidence))},
        {QStringLiteral("heldForMs"), face.remainingMs},
    };
}

QJsonValue logJson(const ReplayedFrame &frame)
{
    if (!frame.isLogged)
        return {};
    return QJsonObject{{QStringLiteral("requests"), requestsJson(frame.logged)},
        {QStringLiteral("agrees"), frame.difference == Difference::None}};
}

} // namespace

QString reasonKey(ContentReason reason)
{
    return QString::fromLatin1(wordsOf(reason).key);
}

QString frameText(const Plan &plan, const FrameChoice &choice, const Paint &paint)
{
    const ReplayedFrame &frame = *choice.chosen();
    QString text = headingText(plan, frame, paint) + reportText(frame, paint)
        + facesText(plan, frame, paint) + legendText(plan, frame) + settingsWord(plan)
        + QLatin1Char('\n');
    for (const DecidedFace &face : frame.decision.faces) {
        if (face.evidence != DecidedFace::Times)
            text += evidenceWord(face) + QLatin1Char('\n');
    }
    if (frame.difference != Difference::None) {
        text
            += paint.warning(QLatin1String("The log says otherwise: ") + requestsWord(frame.logged))
            + QLatin1Char('\n');
    }
    if (frame.difference == Difference::Explainable)
        text += QLatin1String("Other starts before or whole seconds can be the reason.\n");
    const QString sent = wrapped(
        sentWord(frame.decision, [&plan](int number) { return contentWord(plan, number); }), 0);
    return text + paint.good(sent.trimmed()) + QLatin1Char('\n') + neighboursText(choice);
}

QJsonObject frameJson(const Plan &plan, const FrameChoice &choice)
{
    const ReplayedFrame &frame = *choice.chosen();
    QJsonArray faces;
    QJsonArray sent;
    for (const DecidedFace &face : frame.decision.faces) {
        faces.append(faceJson(plan, face));
        if (face.outcome == DecidedFace::Sent)
            sent.append(face.sequence);
    }
    QJsonArray neighbours;
    for (const qint64 number : choice.neighbours())
        neighbours.append(number);
    return {
        {QStringLiteral("file"), plan.fileName},
        {QStringLiteral("title"), plan.title},
        {QStringLiteral("screen"), plan.screenId},
        {QStringLiteral("screenName"), plan.screenName},
        {QStringLiteral("concurrent"), plan.settings.concurrent},
        {QStringLiteral("eventSendingLimit"), plan.settings.eventSendingLimit},
        {QStringLiteral("frame"), frame.number},
        {QStringLiteral("time"), isoTime(frame.decision.time, frame.timeToleranceMs)},
        {QStringLiteral("timeToleranceMs"), frame.timeToleranceMs},
        {QStringLiteral("source"), frame.position.file},
        {QStringLiteral("line"), frame.position.line},
        {QStringLiteral("failure"), frame.decision.errorSeen},
        {QStringLiteral("noFace"), frame.decision.noFace},
        {QStringLiteral("faces"), faces},
        {QStringLiteral("sent"), sent},
        {QStringLiteral("log"), logJson(frame)},
        {QStringLiteral("sameSecond"), neighbours},
        {QStringLiteral("sameSecondCount"), choice.neighbourCount()},
    };
}

} // namespace Hvcp2
