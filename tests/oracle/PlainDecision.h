#pragma once

#include "core/screen/DetectionContent.h"
#include "detection/CalculatedData.h"
#include "detection/FaceResult.h"

#include <QDateTime>
#include <QList>
#include <QString>

/// The parser and the determination as one would write them first, rule by rule: lists of strings,
/// maps, one search after another. A second opinion on what comes out, and a yardstick.
namespace Oracle {

/// One face: its items as they were read, at most one of each kind.
struct PlainFace
{
    int index = -1;
    QDateTime time;
    QList<PluginKrHvcP2::FaceResultItem> items;

    void store(int kind, const QVariant &value, int confidence, bool marked);
    PluginKrHvcP2::FaceResultItem item(int kind) const; ///< of kind None when there is none
    int size() const;
    int directionValue() const;
};

/// What one chunk says.
struct PlainFrame
{
    QString html;
    QList<PlainFace> faces; ///< complete ones, in the order of the output
    QList<int> sizes; ///< of the faces, in the same order
    QList<int> directionValues; ///< of the faces, in the same order
    bool errorSeen = false;
    bool noFace = false;
};

PlainFrame parse(const QString &chunk, const QDateTime &time);

/// The most prominent viewer first.
QList<PluginKrHvcP2::CalculatedData> determine(
    PlainFrame frame, const PluginKrHvcP2::DetectionContents &contents);

} // namespace Oracle
