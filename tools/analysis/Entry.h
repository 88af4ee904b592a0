#pragma once

#include <QDateTime>
#include <QString>
#include <QVector>

namespace Analysis {

/// A place in a file.
struct Position
{
    QString file; ///< as it was named; "-" for standard input
    qint64 line = 1; ///< counted from 1
    qint64 offset = 0; ///< bytes before it
};

/// One thing that a log or a recording tells.
struct Entry
{
    enum Kind {
        Unknown, ///< damaged or foreign text, a message in another language
        Frame, ///< one chunk of the sensor program's output
        Determined, ///< sequences were requested for the viewers of a frame
        Restricted, ///< a request came too soon
        Started, ///< the sensor program
        Stopped, ///< the sensor program
        Error, ///< of the plug-in's own; what the sensor program reports is in its frames
    };

    Kind kind = Unknown;
    Position position; ///< of its first byte
    QDateTime time; ///< null when the source has none
    int timeToleranceMs = 0; ///< it happened in [time, time + this]
    /// Frame: the lines of the sensor program, for SensorOutputParser::parse(). Error: the message.
    /// Unknown: what is wrong, for the user.
    QString text;
    QVector<int> numbers; ///< Determined: sequence numbers, in the order of the requests
    int number = 0; ///< Restricted: sequence number
    int limitMs = 0; ///< Restricted: the time that has to lie between two starts

    /// Whether it comes from a recording, which tells no decisions: logs have whole seconds.
    bool isRecorded() const { return timeToleranceMs == 0; }
};

} // namespace Analysis
