#pragma once

#include "demo/desk/PluginTurn.h"
#include "demo/desk/SeenFrame.h"
#include "tools/analysis/Decider.h"
#include "tools/analysis/Plan.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <deque>
#include <memory>
#include <optional>

namespace Desk {

/// The frames of the newest ten minutes, each with what the plug-in made of it by the plan of its
/// time. They are in the order of their times, which are local ones.
class FrameHistory : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 KeptMs = 600000;
    static constexpr int MaxFrames = 24000; ///< ten minutes of the sensor's fastest, 40 a second
    /// Of their texts, 32 MiB, and about as much again for their faces: ten minutes of 35 faces
    /// four times a second.
    static constexpr int MaxCharacters = 16 * 1024 * 1024;

    explicit FrameHistory(const Analysis::Plan &plan, QObject *parent = nullptr);

    const Analysis::Plan &plan() const { return *currentPlan(); }
    const std::shared_ptr<const Analysis::Plan> &currentPlan() const { return m_plans.back().plan; }
    /// For the frames to come. The times of earlier starts stay, as they do in the plug-in.
    void setPlan(const Analysis::Plan &plan);

    /// Decides by the times of the frames alone. A @p chunk without any line is no frame.
    void take(const QString &chunk, const QDateTime &time);
    /// Of @p turn the frames take the starts that are theirs; the others, as by a button of the
    /// panel, restrict what comes later.
    void take(const PluginTurn &turn);

    bool isEmpty() const { return m_frames.empty(); }
    const std::deque<SeenFrame> &frames() const { return m_frames; } ///< oldest first
    const SeenFrame &newest() const { return m_frames.back(); } ///< of a history that is not empty
    /// The frame whose time is nearest to @p time, @p withinMs milliseconds from it at most.
    std::optional<SeenFrame> nearest(const QDateTime &time, qint64 withinMs) const;
    /// By which frame @p number was decided; never null. Of a frame that is no longer kept it is
    /// the oldest one.
    std::shared_ptr<const Analysis::Plan> planOf(qint64 number) const;

signals:
    void frameAdded(const Desk::SeenFrame &frame);
    void planChanged();

private:
    /// A plan and the first frame that it is for.
    struct PlanFrom
    {
        qint64 number = 0;
        std::shared_ptr<const Analysis::Plan> plan;
    };

    void append(const SeenChunk &chunk, const Analysis::Decision &decision);
    void dropFramesAfter(const QDateTime &time);
    void dropOldFrames();

    Analysis::Decider m_decider;
    std::deque<PlanFrom> m_plans; // never empty
    std::deque<SeenFrame> m_frames;
    qint64 m_characters = 0; // of the frames' texts
    qint64 m_lastNumber = 0;
};

} // namespace Desk
