#pragma once

#include <QDateTime>
#include <QVector>

namespace Analysis {

/// A longer time between two frames was not watched, and is a silence unless another length is
/// given for these.
constexpr qint64 LongestFrameGapMs = 60000;

/// A time without a frame.
struct Silence
{
    QDateTime from; ///< of the last frame before it
    QDateTime to; ///< of the first frame behind it
    bool isStopped = false; ///< the sensor program was stopped in it

    qint64 ms() const { return from.msecsTo(to); }
};

/// Times without a frame.
struct Silences
{
    static constexpr int MaxListed = 100;

    qint64 count = 0;
    qint64 ms = 0; ///< in all
    QVector<Silence> longest; ///< the longest ones, in the order of time

    void add(const Silence &silence);
};

} // namespace Analysis
