#include "demo/desk/FaceMarks.h"

#include "core/screen/Gender.h"
#include "demo/desk/ContentLook.h"
#include "demo/desk/SensorGeometry.h"
#include "tools/analysis/ReportText.h"

#include <QCoreApplication>
#include <QtMath>

#include <algorithm>
#include <numeric>

namespace Desk {

using Analysis::DecidedFace;
using PluginKrHvcP2::ContentReason;
using PluginKrHvcP2::FaceAngles;
using PluginKrHvcP2::FaceBox;
using PluginKrHvcP2::FaceResult;

namespace {

constexpr QRgb Grey = 0xff8b96a2;
constexpr int MaxTextLength = 200; // characters; names and messages come from files and programs

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::FaceMarks", text);
}

QString singleLine(const QString &text)
{
    return text.left(MaxTextLength).simplified();
}

MarkReading ageReading(const FaceResult &face)
{
    if (!face.age)
        return {tr("age ?"), QStringLiteral("?"), QColor::fromRgb(Grey), false, false};
    const QString years = QString::number(face.age->value);
    return {years, years, QColor::fromRgb(ReadingColors::Age), true, face.age->marked};
}

MarkReading genderReading(const FaceResult &face)
{
    if (!face.gender)
        return {tr("gender ?"), QStringLiteral("?"), QColor::fromRgb(Grey), false, false};
    const bool marked = face.gender->marked;
    if (face.gender->value == PluginKrHvcP2::Male)
        return {tr("Male"), tr("M"), QColor::fromRgb(ReadingColors::Male), true, marked};
    return {tr("Female"), tr("F"), QColor::fromRgb(ReadingColors::Female), true, marked};
}

std::optional<MarkPlace> placeOf(const FaceResult &face)
{
    if (!face.box)
        return std::nullopt;
    const FaceBox &box = face.box->value;
    const QPointF center(box.x, box.y);
    if (!isInPicture(center))
        return std::nullopt;
    return MarkPlace{center, qBound(0.0, qreal(box.size), SensorPicture.height())};
}

/// A face that looks further than sideways is shown as one that looks sideways.
qreal radians(const std::optional<int> &degrees)
{
    return qDegreesToRadians(qBound(-90.0, qreal(degrees.value_or(0)), 90.0));
}

/// The picture is seen from the front: a line that goes straight to the sensor is a point, and one
/// that goes sideways has its full length. Positive angles are to the right and up.
std::optional<MarkGaze> gazeOf(const FaceResult &face)
{
    if (!face.angles)
        return std::nullopt;
    const FaceAngles &angles = face.angles->value;
    const qreal leftRight = radians(angles.leftRight);
    const qreal upDown = radians(angles.upDown);
    return MarkGaze{
        {qSin(leftRight) * qCos(upDown), -qSin(upDown)}, angles.leftRight && angles.upDown};
}

qreal rollOf(const FaceResult &face)
{
    return face.angles ? face.angles->value.roll.value_or(0) % 360 : 0;
}

QString durationText(qint64 ms)
{
    return tr("%1 s").arg(static_cast<double>(ms) / 1000, 0, 'f', 1);
}

struct Note
{
    QString text;
    QString shortText;
};

/// Why no content fits.
Note nothingNote(const DecidedFace &face)
{
    const QVector<ContentReason> &reasons = face.evaluation.reasons;
    if (reasons.isEmpty())
        return {tr("no content takes part"), tr("no content")};
    if (!face.face.age)
        return {face.face.gender ? tr("age unknown") : tr("age and gender unknown"), tr("unknown")};
    // Without a gender the age decides alone.
    const bool isForGender = reasons.contains(ContentReason::OtherAge);
    if (isForGender || !face.face.gender)
        return {tr("nothing for this age"), tr("no: age")};
    return {tr("nothing for this gender"), tr("no: gender")};
}

/// A log may tell of a restriction where the times do not.
Note restrictedNote(qint64 remainingMs)
{
    if (remainingMs <= 0)
        return {tr("restricted"), {}};
    const QString left = durationText(remainingMs);
    return {tr("restricted %1").arg(left), left};
}

Note noteOf(const DecidedFace &face)
{
    switch (face.outcome) {
    case DecidedFace::NothingFits:
        return nothingNote(face);
    case DecidedFace::Cut:
        return {tr("cut"), {}};
    case DecidedFace::Restricted:
        return restrictedNote(face.remainingMs);
    case DecidedFace::Sent:
        break;
    }
    return {};
}

FaceMark faceMark(const DecidedFace &face, const Analysis::Plan &plan)
{
    FaceMark mark;
    mark.index = face.face.index;
    mark.place = placeOf(face.face);
    mark.gaze = gazeOf(face.face);
    mark.roll = rollOf(face.face);
    mark.age = ageReading(face.face);
    mark.gender = genderReading(face.face);
    mark.content = singleLine(plan.name(face.sequence));
    mark.color = face.sequence > 0 ? contentColor(plan, face.sequence) : QColor::fromRgb(Grey);
    mark.outcome = face.outcome;
    mark.sequence = face.sequence;
    const Note note = noteOf(face);
    mark.note = note.text;
    mark.shortNote = note.shortText;
    return mark;
}

/// The rank of each face: of two that are as prominent, the one that is decided on first is ahead.
QVector<int> ranks(const QVector<DecidedFace> &faces)
{
    QVector<int> order(faces.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
        [&faces](int a, int b) { return faces.at(a).prominence > faces.at(b).prominence; });
    QVector<int> result(faces.size());
    for (int i = 0; i < order.size(); ++i)
        result[order.at(i)] = i + 1;
    return result;
}

} // namespace

FaceMarks faceMarks(const SeenFrame &frame, const Analysis::Plan &plan)
{
    const QVector<DecidedFace> &faces = frame.decision.faces;
    FaceMarks marks;
    marks.nobody = faces.isEmpty() && frame.decision.noFace;
    marks.hasFailed = frame.decision.errorSeen;
    if (marks.hasFailed)
        marks.failure = singleLine(Analysis::failuresIn(frame.text).value(0));

    const int shown = std::min(faces.size(), FaceMarks::MaxFaces);
    marks.leftOut = faces.size() - shown;
    const QVector<int> rankOf = ranks(faces);
    for (int i = 0; i < shown; ++i) {
        marks.faces.append(faceMark(faces.at(i), plan));
        marks.faces.last().rank = rankOf.at(i);
    }
    return marks;
}

} // namespace Desk
