#pragma once

#include "demo/desk/DecisionModel.h"
#include "demo/desk/SeenFrame.h"
#include "tools/analysis/Plan.h"

#include <QWidget>

#include <optional>

class QLabel;
class QTableView;
class QTimer;

namespace Desk {

/// Explains the decision of one frame in a table, and what is left of its restrictions.
class DecisionView : public QWidget
{
    Q_OBJECT

public:
    explicit DecisionView(QWidget *parent = nullptr);

    const DecisionModel &model() const { return m_model; }

public slots:
    void setPlan(const Analysis::Plan &plan); ///< takes the frame away, which is of another one
    void showFrame(const Desk::SeenFrame &frame); ///< of the plan
    void clear(); ///< no frame
    /// Of a frame that was picked the times stay as they were, those of the newest one run.
    void setPicked(bool isPicked);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void fit();
    void refresh();
    void letTimeRun();

    DecisionModel m_model;
    std::optional<Analysis::Plan> m_newPlan; // not yet in the model
    SeenFrame m_frame; // number 0: none
    bool m_isPicked = false;
    // children of this
    QTimer *m_timer = nullptr; // runs while something runs down that can be seen
    QLabel *m_heading = nullptr;
    QTableView *m_table = nullptr;
    QLabel *m_summary = nullptr;
};

} // namespace Desk
