#pragma once

#include "demo/desk/SeenFrame.h"
#include "tools/analysis/Bonus.h"
#include "tools/analysis/Plan.h"

#include <QAbstractTableModel>
#include <QString>
#include <QVector>

namespace Desk {

/// What the plug-in made of each face of a frame, and why: a column for each face in the order of
/// the decision, rows for what came of it, what counted and each content.
class DecisionModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// What a row tells. Content stands for as many as the plan has entries.
    enum Row {
        Sequence,
        Outcome,
        TimeLeft,
        Gender,
        Age,
        Size,
        SizeRank,
        Direction,
        DirectionRank,
        BaseScore,
        Content,
        FitBonus,
        GenderBonus,
        AgeBonus,
        Score,
        RowKinds
    };

    explicit DecisionModel(QObject *parent = nullptr);

    void setPlan(const Analysis::Plan &plan); ///< takes the frame away, which is of another one
    void setFrame(const SeenFrame &frame); ///< of the plan
    void clear(); ///< no frame

    /// The time since the frame, 0 or more milliseconds: what is left of a restriction is less by
    /// that.
    void setElapsed(qint64 ms);
    bool isRunningDown() const; ///< a restriction of the frame is not over yet

    /// What came of it in a few sentences, a line for each; empty without a frame.
    QString summary() const;

    int rowOf(Row row) const; ///< for Content that of the first one
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    Row kindOf(int row) const;
    QString text(int row, int column) const;
    QString toolTip(int row, int column) const;
    QVariant color(int row, int column) const;
    bool isEmphasized(int row, int column) const;
    QString timeLeft(const Analysis::DecidedFace &face) const;
    QVariant faceHeader(const Analysis::DecidedFace &face, int role) const;
    QVariant entryHeader(const Analysis::PlannedContent &entry, int role) const;
    const Analysis::PlannedContent &entryOf(int row) const; // of a row of the kind Content
    /// What became of that entry for a face; null when it takes no part.
    const PluginKrHvcP2::ContentReason *reasonOf(int row, int column) const;

    Analysis::Plan m_plan;
    QVector<int> m_positions; // of the entries in the table of contents; -1: in none
    SeenFrame m_frame; // number 0: none
    QVector<Analysis::Bonus> m_bonuses; // by face
    qint64 m_elapsedMs = 0;
};

} // namespace Desk
