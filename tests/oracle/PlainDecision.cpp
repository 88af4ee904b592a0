#include "tests/oracle/PlainDecision.h"

#include <QStringList>
#include <QVariantMap>

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace Oracle {

using namespace PluginKrHvcP2;

namespace {

#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
constexpr auto SkipEmptyParts = Qt::SkipEmptyParts;
#else
constexpr auto SkipEmptyParts = QString::SkipEmptyParts;
#endif

constexpr int NoDirection = std::numeric_limits<int>::max();

int tokenNumber(const QString &token, bool &ok)
{
    const QStringList parts = token.split(QLatin1Char(':'), SkipEmptyParts);
    ok = false;
    const int number = parts.size() >= 2 ? parts.at(1).toInt(&ok, 10) : -1;
    return ok ? number : -1;
}

QString errorCell(const QString &line)
{
    const QString text
        = line.compare(QStringLiteral("Failed to open COM port."), Qt::CaseInsensitive) == 0
        ? QStringLiteral("Failed to open COM port.")
        : line;
    return QStringLiteral("<td><span style=\"color:red;font-weight:bold;\">%1</span></td>")
        .arg(text);
}

QString faceCountCell(const QString &line, bool &noFace)
{
    QString colour = QStringLiteral("white");
    const QStringList parts = line.split(QLatin1Char(':'), SkipEmptyParts);
    if (parts.size() >= 2) {
        bool ok = false;
        const int count = parts.at(1).toInt(&ok, 10);
        if (!ok || count < 1) {
            colour = QStringLiteral("orange");
            noFace = true;
        }
    }
    return QStringLiteral("<td><span style=\"color:%1;\">%2</span></td>").arg(colour, line);
}

QString indexCell(const QString &line, const QStringList &fields, PlainFace &face)
{
    bool ok = false;
    const int index = tokenNumber(fields.at(0), ok);
    if (!ok)
        return line;
    face.index = index;

    QVariantMap map;
    int confidence = 0;
    const QStringList tokens = fields.at(1).split(QLatin1Char(' '), SkipEmptyParts);
    for (const QString &token : tokens) {
        const int number = tokenNumber(token, ok);
        if (!ok)
            continue;
        if (token.startsWith(QStringLiteral("X:")))
            map.insert(QStringLiteral("X"), number);
        else if (token.startsWith(QStringLiteral("Y:")))
            map.insert(QStringLiteral("Y"), number);
        else if (token.startsWith(QStringLiteral("Size:")))
            map.insert(QStringLiteral("Size"), number);
        else if (token.startsWith(QStringLiteral("Confidence:")))
            confidence = number;
    }
    if (tokens.size() >= 4 && map.size() == 3)
        face.store(FaceResultItem::Detection, map, confidence, false);
    return QStringLiteral("<td style=\"font-weight:bold;\">%1</td>").arg(fields.at(0))
        + QStringLiteral("<td>%1 </td>").arg(fields.at(1));
}

QString ageText(const QString &values, bool marked, PlainFace &face)
{
    QString text;
    QVariant age;
    int confidence = 0;
    const QStringList tokens = values.split(QLatin1Char(' '), SkipEmptyParts);
    for (const QString &token : tokens) {
        bool ok = false;
        const int number = tokenNumber(token, ok);
        if (ok && token.startsWith(QStringLiteral("Age:"))) {
            age = number;
            text += QStringLiteral("Age:<span style=\"color:yellow;\">%1</span> ").arg(number);
        } else if (ok && token.startsWith(QStringLiteral("Confidence:"))) {
            confidence = number;
            text += QStringLiteral("Confidence:%1 ").arg(number);
        } else {
            text += token;
        }
    }
    if (age.isValid())
        face.store(FaceResultItem::Age, age, confidence, marked);
    return text;
}

QString genderText(const QString &values, bool marked, PlainFace &face)
{
    QString text;
    QVariant gender;
    int confidence = 0;
    const QStringList tokens = values.split(QLatin1Char(' '), SkipEmptyParts);
    for (const QString &token : tokens) {
        bool ok = false;
        const int number = tokenNumber(token, ok);
        const QString word = token.startsWith(QStringLiteral("Gender:"))
            ? token.split(QLatin1Char(':'), SkipEmptyParts).value(1)
            : QString();
        if (word == QStringLiteral("Male")) {
            gender = int{Male};
            text += QStringLiteral("Gender:<span style=\"color:skyblue;\">Male </span>");
        } else if (word == QStringLiteral("Female")) {
            gender = int{Female};
            text += QStringLiteral("Gender:<span style=\"color:deeppink;\">Female </span>");
        } else if (ok && token.startsWith(QStringLiteral("Confidence:"))) {
            confidence = number;
            text += QStringLiteral("Confidence:%1 ").arg(number);
        } else {
            text += token;
        }
    }
    if (gender.isValid())
        face.store(FaceResultItem::Gender, gender, confidence, marked);
    return text;
}

QString directionText(const QString &values, PlainFace &face)
{
    QString text;
    QVariantMap map;
    int confidence = 0;
    const QStringList tokens = values.split(QLatin1Char(' '), SkipEmptyParts);
    for (const QString &token : tokens) {
        bool ok = false;
        const int number = tokenNumber(token, ok);
        if (ok && token.startsWith(QStringLiteral("Confidence:"))) {
            confidence = number;
            text += QStringLiteral("Confidence:%1 ").arg(number);
            continue;
        }
        for (const QString &key :
            {QStringLiteral("LR"), QStringLiteral("UD"), QStringLiteral("Roll")}) {
            if (ok && token.startsWith(key + QLatin1Char(':')))
                map.insert(key, number);
        }
        text += token + QLatin1Char(' ');
    }

    const QString leftRight = QStringLiteral("LR");
    const QString upDown = QStringLiteral("UD");
    if (map.contains(leftRight)) {
        const qint64 sum = std::abs(map.value(leftRight).toLongLong())
            + std::abs(map.value(upDown).toLongLong());
        map.insert(QStringLiteral("DirectionValue"),
            map.contains(upDown) ? static_cast<int>(std::min<qint64>(sum, NoDirection))
                                 : NoDirection);
        face.store(FaceResultItem::Direction, map, confidence, false);
    }
    return text;
}

QString resultCells(const QString &line, PlainFace &face)
{
    const QStringList fields = line.split(QLatin1Char('\t'), SkipEmptyParts);
    if (fields.isEmpty())
        return line;
    if (fields.size() == 1)
        return {};
    if (line.startsWith(QStringLiteral("Index:"), Qt::CaseInsensitive))
        return indexCell(line, fields, face);

    const QString &label = fields.at(0);
    const bool marked = line.contains(QLatin1Char('*'));
    QString text;
    if (label.startsWith(QStringLiteral("Age")))
        text = ageText(fields.at(1), marked, face);
    else if (label.startsWith(QStringLiteral("Gender")))
        text = genderText(fields.at(1), marked, face);
    else if (label.startsWith(QStringLiteral("Face Direction")))
        text = directionText(fields.at(1), face);
    const QString style = marked ? QStringLiteral(" style=\"color:lime;\"") : QString();
    return QStringLiteral("<td>") + label + QStringLiteral("</td><td") + style + QStringLiteral(">")
        + text + QStringLiteral("</td>");
}

void commit(const PlainFace &face, PlainFrame &frame)
{
    frame.faces.append(face);
    frame.sizes.append(face.size());
    frame.directionValues.append(face.directionValue());
}

/// Position of the content that fits and the bonus; -1 when none does.
int matchContent(const PlainFace &face, const DetectionContents &contents, double &bonus)
{
    const FaceResultItem age = face.item(FaceResultItem::Age);
    const FaceResultItem gender = face.item(FaceResultItem::Gender);
    const int years = age.isValid() ? age.value.toInt() : -1;
    int defaultFit = -1;
    int ageFit = -1;
    for (int i = 0; i < contents.size(); ++i) {
        const DetectionContent &content = contents.at(i);
        const bool fitsAge = content.ageMin <= years && years <= content.ageMax;
        if ((content.genders & gender.value.toInt()) == 0) {
            if (fitsAge)
                ageFit = i;
        } else if (fitsAge) {
            bonus = (gender.marked ? 1.65 : 1.5) * (age.marked ? 1.1 : 1.0);
            return i;
        } else if (content.isDefault) {
            defaultFit = i;
        }
    }
    if (defaultFit >= 0)
        bonus = gender.marked ? 1.1 : 1.0;
    else
        bonus = age.marked ? 0.55 : 0.5;
    return defaultFit >= 0 ? defaultFit : ageFit;
}

} // namespace

void PlainFace::store(int kind, const QVariant &value, int confidence, bool marked)
{
    const FaceResultItem item{kind, value, confidence, marked};
    for (FaceResultItem &stored : items) {
        if (stored.kind == kind) {
            stored = item;
            return;
        }
    }
    items.append(item);
}

FaceResultItem PlainFace::item(int kind) const
{
    for (const FaceResultItem &stored : items) {
        if (stored.kind == kind)
            return stored;
    }
    return {};
}

int PlainFace::size() const
{
    return item(FaceResultItem::Detection).value.toMap().value(QStringLiteral("Size")).toInt();
}

int PlainFace::directionValue() const
{
    return item(FaceResultItem::Direction)
        .value.toMap()
        .value(QStringLiteral("DirectionValue"), NoDirection)
        .toInt();
}

PlainFrame parse(const QString &chunk, const QDateTime &time)
{
    PlainFrame frame;
    PlainFace face; // under construction
    frame.html = QStringLiteral("<table>");
    const QStringList lines = chunk.split(QLatin1Char('\n'), SkipEmptyParts);
    for (const QString &untrimmed : lines) {
        if (untrimmed.startsWith(QStringLiteral("Press Space Key to end:"), Qt::CaseInsensitive)) {
            face = {};
            continue;
        }
        const QString line = untrimmed.trimmed();
        frame.html += QStringLiteral("<tr>");
        bool closes = false;
        if (line.contains(QStringLiteral("Failed "), Qt::CaseInsensitive)) {
            frame.html += errorCell(line);
            frame.errorSeen = true;
        } else if (line.startsWith(QStringLiteral("Face result count:"), Qt::CaseInsensitive)) {
            frame.html += faceCountCell(line, frame.noFace);
        } else {
            frame.html += resultCells(line, face);
            closes = line.startsWith(QStringLiteral("Gender"));
        }
        frame.html += QStringLiteral("</tr>");
        if (!closes)
            continue;
        frame.html += QStringLiteral("<tr><td></td></tr>");
        if (face.index >= 0 && !face.items.isEmpty()) {
            face.time = time;
            commit(face, frame);
        }
        face = {};
    }
    frame.html += QStringLiteral("</table>");
    return frame;
}

QList<CalculatedData> determine(PlainFrame frame, const DetectionContents &contents)
{
    std::sort(frame.sizes.begin(), frame.sizes.end());
    std::sort(frame.directionValues.begin(), frame.directionValues.end());
    QList<CalculatedData> sequences;
    for (const PlainFace &face : qAsConst(frame.faces)) {
        double bonus = 0;
        const int position = matchContent(face, contents, bonus);
        if (position < 0)
            continue;
        const int size = frame.sizes.lastIndexOf(face.size());
        const int direction = frame.directionValues.indexOf(face.directionValue());
        CalculatedData data;
        data.faceIndex = face.index;
        data.score = size + (frame.directionValues.size() - direction) * 0.5;
        data.score += bonus;
        data.seqNumber = contents.at(position).sequenceNumber;
        data.restrictionKeys = contents.at(position).identifiers;
        data.time = face.time;
        sequences.append(data);
    }
    std::stable_sort(
        sequences.begin(), sequences.end(), [](const CalculatedData &a, const CalculatedData &b) {
            return a.score != b.score ? a.score > b.score : a.faceIndex > b.faceIndex;
        });
    return sequences;
}

} // namespace Oracle
