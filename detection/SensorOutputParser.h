#pragma once

#include "detection/FaceResult.h"

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringView>
#include <QVector>

namespace PluginKrHvcP2 {

/// What one chunk of the sensor program's output says.
struct SensorFrame
{
    QList<FaceResult> faces; ///< complete ones, in the order of the output
    QVector<int> sizes; ///< of the faces, in the same order
    QVector<int> directionValues; ///< of the faces, in the same order
    QString html; ///< a table with a row for each line; the program's text goes in unescaped
    bool hasRows = false; ///< there was a line that is not just an end prompt
    QString markup; ///< those rows of it that are made of lines with a '<'
    bool errorSeen = false; ///< the program reported a failure
    bool noFace = false; ///< the program counted no face
};

/// Reads one chunk of the sensor program's output, line by line. Nothing is carried over to the
/// next chunk: the pieces of a line that was cut are lines of their own, a face that was cut is
/// lost.
class SensorOutputParser
{
    Q_DECLARE_TR_FUNCTIONS(SensorOutputParser)

public:
    /// @p time becomes the time of the faces.
    static SensorFrame parse(const QString &chunk, const QDateTime &time);

    /// The same for somebody who shows nothing: without html and markup, in half the time.
    static SensorFrame parseUnseen(const QString &chunk, const QDateTime &time);

    /// The lines of @p chunk that parse() makes rows of, trimmed; empty ones are left out.
    static QString plainText(const QString &chunk);

    /// Whether parse() reads the text behind @p label, the first field of a line.
    static bool isLabel(QStringView label);

    /// Whether @p line reports a failure: has "Failed " in it, in any letter case.
    static bool isError(QStringView line);
};

} // namespace PluginKrHvcP2
