#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace Player {

/// Keeps a CSV file of what has played: a line for each start, written when the next one comes.
///
/// The lines are appended to what the file holds. What cannot be written is kept and tried again
/// with the next line.
class ProofOfPlay
{
public:
    static constexpr int MaxKept = 2000; ///< lines; older ones are lost

    struct Start
    {
        int sequence = 0; ///< counted from 1
        QString name;
        QString reason; ///< "viewer", "idle" and so on
    };

    explicit ProofOfPlay(const QString &fileName);

    void open(); ///< makes the file, so that a problem shows before anything plays
    void start(const Start &start, const QDateTime &now); ///< ends what played before
    void end(const QDateTime &now); ///< does nothing when nothing plays

    /// Why the last attempt to write has failed, with the file; empty when it has not.
    QString problem() const { return m_problem; }

private:
    void write();
    QString append() const;

    QString m_fileName;
    std::optional<Start> m_playing;
    QDateTime m_startTime; // of m_playing
    QList<QByteArray> m_unwritten;
    QString m_problem;
};

} // namespace Player
