#pragma once

#include "demo/desk/FaceMarks.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Desk {

/// What is known of the sensor program beside its frames.
struct SensorState
{
    int intervalMs = 0; ///< between two frames; 0: not known
    int restarts = 0; ///< of the sensor program
    bool isLive = true; ///< the newest frame is shown; one of the past does not get too old

    /// How old the newest frame may get before something is wrong.
    qint64 patienceMs() const;

    friend bool operator==(const SensorState &a, const SensorState &b)
    {
        return a.intervalMs == b.intervalMs && a.restarts == b.restarts && a.isLive == b.isLive;
    }
    friend bool operator!=(const SensorState &a, const SensorState &b) { return !(a == b); }
};

/// What is said in words over the picture.
struct SensorMessage
{
    enum Kind {
        None, ///< there are faces to look at
        Waiting, ///< there has been no frame yet
        Nobody, ///< the frame has no face
        Stale, ///< the newest frame has come too long ago
        Failure, ///< the sensor program reports one
    };

    Kind kind = None;
    QString title;
    QStringList lines; ///< below the title
};

/// @p ageMs is how long ago the newest frame has come; nothing: none has.
SensorMessage sensorMessage(
    const FaceMarks &marks, const SensorState &state, const std::optional<qint64> &ageMs);

/// The same picture for somebody who does not see it: the message, the faces and what decided.
QString spokenText(const FaceMarks &marks, const SensorMessage &message);

/// "0.5 s"; from a minute on without the seconds: "2 min", "3 h 02 min".
QString spanText(qint64 ms);

} // namespace Desk
