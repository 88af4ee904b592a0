#pragma once

#include "demo/desk/SeenFrame.h"
#include "tools/analysis/Plan.h"

#include <QColor>
#include <QPointF>
#include <QString>
#include <QVector>

#include <optional>

namespace Desk {

/// The colours in which the plug-in's panel shows what was read.
namespace ReadingColors {
constexpr QRgb Age = 0xffffff00; ///< yellow
constexpr QRgb Male = 0xff87ceeb; ///< skyblue
constexpr QRgb Female = 0xffff1493; ///< deeppink
constexpr QRgb Settled = 0xff00ff00; ///< lime
} // namespace ReadingColors

/// Age or gender of a face, to be shown.
struct MarkReading
{
    QString text; ///< "34", "Female"
    QString shortText; ///< "34", "F"
    QColor color;
    bool isKnown = false;
    bool isSettled = false; ///< the sensor has put its '*' behind it
};

/// Where a face is and how large, in pixels of the sensor.
struct MarkPlace
{
    QPointF center;
    qreal size = 0; ///< 0 or more
};

/// Which way a face looks.
struct MarkGaze
{
    /// Where the tip of a line of length 1 from the face's centre is seen: to the right, and down.
    /// (0, 0): it looks straight at the sensor.
    QPointF tip;
    bool isWhole = true; ///< both angles were read
};

/// What is drawn for one face.
struct FaceMark
{
    int index = 0; ///< the sensor's number of the face
    int rank = 0; ///< by prominence, counted from 1
    std::optional<MarkPlace> place; ///< none: the sensor told none within its picture
    std::optional<MarkGaze> gaze; ///< none: no direction was read
    qreal roll = 0; ///< degrees by which the face is turned clockwise
    MarkReading age;
    MarkReading gender;

    Analysis::DecidedFace::Outcome outcome = Analysis::DecidedFace::NothingFits;
    int sequence = 0; ///< of the content that fits; 0: none does
    QString content; ///< its name, without line breaks
    QColor color; ///< opaque; the content's, or grey
    QString note; ///< why it did not decide: "restricted 2.1 s", "nothing for this age"
    QString shortNote; ///< the same where there is little room: "2.1 s", "no: age"; may be empty

    bool hasDecided() const { return outcome == Analysis::DecidedFace::Sent; }
};

/// What is drawn for one frame.
struct FaceMarks
{
    static constexpr int MaxFaces = 70; ///< the sensor reports 35 at most

    QVector<FaceMark> faces; ///< in the order of the decision, MaxFaces at most
    int leftOut = 0; ///< faces beyond those
    bool nobody = false; ///< the sensor has counted no face
    bool hasFailed = false; ///< the sensor program reports a failure
    QString failure; ///< its words; may be cut

    int count() const { return faces.size() + leftOut; }
};

FaceMarks faceMarks(const SeenFrame &frame, const Analysis::Plan &plan);

} // namespace Desk
