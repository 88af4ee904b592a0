#pragma once

#include <QtGlobal>

#include <optional>

namespace Player {

/// Why a sequence was started, as far as a host can tell.
enum class StartReason {
    Viewer, ///< the plug-in asked by itself
    Idle, ///< nothing else had been started for a while
    Key, ///< a key or a menu entry of the player
    Panel, ///< a button of the plug-in's panel
};

/// Decides when the sequences that are asked for start, and when the idle one returns.
///
/// Knows no clock: every time is in milliseconds of one that never goes back.
class Programme
{
public:
    enum class Switching {
        Now, ///< a request starts at once
        AtEnd, ///< it waits until the content before it has played for its duration
    };

    struct Rules
    {
        Switching switching = Switching::Now;
        int idleSequence = 0; ///< 0: none
        qint64 idleAfter = 20000; ///< since the last start
    };

    struct Item
    {
        int sequence = 0; ///< counted from 1
        StartReason reason = StartReason::Viewer;
        qint64 duration = 0; ///< of the content, for Switching::AtEnd

        friend bool operator==(const Item &a, const Item &b)
        {
            return a.sequence == b.sequence && a.reason == b.reason && a.duration == b.duration;
        }
    };

    Programme() = default;
    explicit Programme(const Rules &rules)
        : m_rules(rules)
    { }

    /// Returns what starts at @p now: the item or, when it has to wait, nothing. Of those that wait
    /// the newest one stays. The idle sequence makes way at once: it plays for nobody.
    std::optional<Item> request(const Item &item, qint64 now);
    /// Returns what starts at @p now because time has passed. The idle sequence also does when
    /// nothing has played yet.
    std::optional<Item> advance(qint64 now);
    /// How long after @p now there is something for advance(); nothing: not before a request.
    std::optional<qint64> untilAdvance(qint64 now) const;

    /// There are only the sequences up to @p last from now on.
    void dropBehind(int last);

    /// The item that plays, also when it is over; nothing before the first one.
    std::optional<Item> playing() const { return m_playing; }
    std::optional<Item> waiting() const { return m_waiting; }

private:
    bool hasIdle() const { return m_rules.idleSequence > 0; }
    bool isIdle() const { return m_playing && m_playing->reason == StartReason::Idle; }
    bool mustPlayOn(qint64 now) const { return m_playing && now < end(); }
    qint64 end() const;
    Item start(const Item &item, qint64 now);

    Rules m_rules;
    std::optional<Item> m_playing;
    qint64 m_startTime = 0; // of m_playing
    std::optional<Item> m_waiting;
};

} // namespace Player
