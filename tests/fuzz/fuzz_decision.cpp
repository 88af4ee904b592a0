// The sensor program's text up to the ordered list of sequences, beside a literal version of the
// rules: whatever the bytes are, every field and every letter of the table has to be the same.
//
// The first line makes the contents, four bytes each, which letters make readable: the gender (m, f
// or g for both; a capital one for the default), lowest and highest age (the character of 32 plus
// the years) and the linked screen. What follows is the program's output; a record separator cuts
// it into chunks.

#include "tests/fuzz/Finding.h"
#include "tests/fuzz/Target.h"

#include "detection/Determination.h"
#include "detection/FaceEvaluation.h"
#include "detection/SensorOutputParser.h"
#include "tests/oracle/PlainDecision.h"

#include <QStringList>
#include <QVector>

#include <cstring>

using namespace PluginKrHvcP2;

namespace {

constexpr char ChunkEnd = '\x1e';
constexpr int ContentBytes = 4;
constexpr int CapitalBit = 0x20;
constexpr int MaxContents = 24;

/// What the plug-in makes of one chunk.
struct Outcome
{
    SensorFrame frame;
    QList<CalculatedData> sequences;
};

DetectionContents contentsFrom(const QByteArray &line)
{
    DetectionContents contents;
    for (int i = 0; i + ContentBytes <= line.size() && contents.size() < MaxContents;
         i += ContentBytes) {
        const auto byte = [&](int offset) { return int{static_cast<uchar>(line.at(i + offset))}; };
        DetectionContent content;
        content.sequenceNumber = contents.size() + 1;
        content.genders = byte(0) & BothGenders;
        content.isDefault = (byte(0) & CapitalBit) == 0;
        content.ageMin = byte(1) - ' ';
        content.ageMax = byte(2) - ' ';
        content.identifiers = {byte(3), 7};
        contents.append(content);
    }
    return contents;
}

QString textOf(const QByteArray &chunk)
{
    return QString::fromUtf8(chunk.constData(), chunk.size()); // keeps NULs
}

void compareItem(const FaceResultItem &ours, const FaceResultItem &expected)
{
    Fuzz::expectSame(ours.kind, expected.kind, "kind of an item");
    Fuzz::expectSame(ours.value.userType(), expected.value.userType(), "type of a value");
    Fuzz::expectSame(ours.value, expected.value, "value");
    Fuzz::expectSame(ours.confidence, expected.confidence, "confidence");
    Fuzz::expectSame(ours.marked, expected.marked, "marked");
}

void compareFace(const FaceResult &ours, const Oracle::PlainFace &expected)
{
    Fuzz::expectSame(ours.index, expected.index, "index of a face");
    Fuzz::expectSame(ours.time, expected.time, "time of a face");
    for (int kind = FaceResultItem::None; kind <= FaceResultItem::Gender + 1; ++kind)
        compareItem(ours.item(kind), expected.item(kind));
}

void compareFrame(const SensorFrame &ours, const Oracle::PlainFrame &expected)
{
    Fuzz::expectSame(ours.html, expected.html, "table");
    Fuzz::expectSame(ours.sizes.toList(), expected.sizes, "sizes");
    Fuzz::expectSame(ours.directionValues.toList(), expected.directionValues, "direction values");
    Fuzz::expectSame(ours.errorSeen, expected.errorSeen, "error seen");
    Fuzz::expectSame(ours.noFace, expected.noFace, "no face");
    Fuzz::expectSame(ours.hasRows, expected.html.contains(QLatin1String("<tr>")), "has rows");
    Fuzz::expectSame(ours.faces.size(), expected.faces.size(), "number of faces");
    for (int i = 0; i < ours.faces.size(); ++i)
        compareFace(ours.faces.at(i), expected.faces.at(i));
}

/// Nobody sees the table: everything else has to be the same.
void compareUnseen(const SensorFrame &unseen, const SensorFrame &seen)
{
    Fuzz::expect(unseen.html.isEmpty() && unseen.markup.isEmpty(), "table that nobody sees");
    Fuzz::expectSame(unseen.sizes, seen.sizes, "sizes, unseen");
    Fuzz::expectSame(unseen.directionValues, seen.directionValues, "direction values, unseen");
    Fuzz::expectSame(unseen.errorSeen, seen.errorSeen, "error seen, unseen");
    Fuzz::expectSame(unseen.noFace, seen.noFace, "no face, unseen");
    Fuzz::expectSame(unseen.hasRows, seen.hasRows, "has rows, unseen");
    Fuzz::expectSame(unseen.faces.size(), seen.faces.size(), "number of faces, unseen");
    for (int i = 0; i < unseen.faces.size(); ++i) {
        Fuzz::expectSame(unseen.faces.at(i).index, seen.faces.at(i).index, "index, unseen");
        for (int kind = FaceResultItem::None; kind <= FaceResultItem::Gender + 1; ++kind)
            compareItem(unseen.faces.at(i).item(kind), seen.faces.at(i).item(kind));
    }
}

Outcome decide(const QString &chunk, const QDateTime &time, const DetectionContents &contents)
{
    const SensorFrame frame = SensorOutputParser::parse(chunk, time);
    compareUnseen(SensorOutputParser::parseUnseen(chunk, time), frame);
    return {frame, determineSequences(frame.faces, frame.sizes, frame.directionValues, contents)};
}

void compareSequences(const QList<CalculatedData> &ours, const QList<CalculatedData> &expected)
{
    Fuzz::expectSame(ours.size(), expected.size(), "number of sequences");
    for (int i = 0; i < ours.size(); ++i) {
        Fuzz::expectSame(ours.at(i).faceIndex, expected.at(i).faceIndex, "face of a sequence");
        Fuzz::expectSame(ours.at(i).score, expected.at(i).score, "score");
        Fuzz::expectSame(ours.at(i).seqNumber, expected.at(i).seqNumber, "sequence number");
        Fuzz::expectSame(
            ours.at(i).restrictionKeys, expected.at(i).restrictionKeys, "restriction keys");
        Fuzz::expectSame(ours.at(i).time, expected.at(i).time, "time of a sequence");
    }
}

/// The explanation must not say anything else than the decision.
void checkEvaluation(const FaceResult &face, const DetectionContents &contents)
{
    const FaceEvaluation evaluation = evaluateFace(face, contents);
    const ContentMatch match = matchContent(face, contents);
    Fuzz::expectSame(evaluation.match.position, match.position, "explained content");
    Fuzz::expectSame(evaluation.reasons.size(), contents.size(), "number of reasons");
    for (int i = 0; i < evaluation.reasons.size(); ++i) {
        const ContentReason reason = evaluation.reasons.at(i);
        const bool isTaken = reason == ContentReason::FullFit || reason == ContentReason::DefaultFit
            || reason == ContentReason::AgeFit;
        Fuzz::expectSame(isTaken, i == match.position, "reason of the content that is taken");
    }
}

/// The lines that get a row.
QStringList rowLines(const QString &chunk)
{
    QStringList lines;
    const QStringList all = chunk.split(QLatin1Char('\n'));
    for (const QString &line : all) {
        const bool isEndPrompt
            = line.startsWith(QLatin1String("Press Space Key to end:"), Qt::CaseInsensitive);
        if (!line.isEmpty() && !isEndPrompt)
            lines.append(line.trimmed());
    }
    return lines;
}

/// A row says nothing of the lines before it, so that of a line alone is that of the chunk.
QString markupRows(const QString &chunk)
{
    QString rows;
    const QStringList lines = rowLines(chunk).filter(QLatin1String("<"));
    for (const QString &line : lines) {
        QString table = Oracle::parse(line, QDateTime()).html;
        table.remove(0, static_cast<int>(std::strlen("<table>")));
        table.chop(static_cast<int>(std::strlen("</table>")));
        if (line.startsWith(QLatin1String("Gender"))
            && !line.contains(QLatin1String("Failed "), Qt::CaseInsensitive))
            table.chop(static_cast<int>(std::strlen("<tr><td></td></tr>")));
        rows += table;
    }
    return rows;
}

void check(const QString &chunk, const QDateTime &time, const DetectionContents &contents,
    const Outcome &outcome)
{
    const Oracle::PlainFrame expected = Oracle::parse(chunk, time);
    compareFrame(outcome.frame, expected);
    Fuzz::expectSame(outcome.frame.markup, markupRows(chunk), "rows with markup");
    QStringList lines = rowLines(chunk);
    lines.removeAll(QString());
    Fuzz::expectSame(
        SensorOutputParser::plainText(chunk), lines.join(QLatin1Char('\n')), "plain text");
    compareSequences(outcome.sequences, Oracle::determine(expected, contents));
    for (const FaceResult &face : outcome.frame.faces)
        checkEvaluation(face, contents);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const int lineEnd = input.indexOf('\n');
    const DetectionContents contents = contentsFrom(input.left(lineEnd));
    const QList<QByteArray> chunks = input.mid(lineEnd + 1).split(ChunkEnd);

    // One after the other, then compared: nothing of a chunk may reach another one.
    const QDateTime start = QDateTime::fromMSecsSinceEpoch(0, Qt::UTC);
    QVector<Outcome> outcomes;
    for (const QByteArray &chunk : chunks)
        outcomes.append(decide(textOf(chunk), start.addMSecs(outcomes.size()), contents));
    for (int i = 0; i < chunks.size(); ++i)
        check(textOf(chunks.at(i)), start.addMSecs(i), contents, outcomes.at(i));
    return 0;
}
