#pragma once

#include "demo/player/LinkedScreens.h"
#include "demo/player/SensorWatch.h"

#include <QTimer>
#include <QWidget>

class QFormLayout;
class QLabel;

namespace Analysis {
struct Plan;
}

namespace Player {

class StageDesk;
class StagePlayer;

/// What a host knows beside the events: the sensor program, which screens hold sequences back for
/// how long, and what comes next.
class HostPane : public QWidget
{
    Q_OBJECT

public:
    /// Neither @p player nor @p desk is owned.
    HostPane(StagePlayer *player, StageDesk *desk, QWidget *parent = nullptr);

    /// For example "process 4711, restarted 2 times".
    static QString sensorText(bool isKnown, qint64 processId, int restarts);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QLabel *addRow(QFormLayout *layout, const QString &title, const QString &objectName);
    void onCalled(const QString &operation);
    void takePlan(const Analysis::Plan &plan);
    void showSensor();
    void showTimes();
    QString screensText(const QVector<LinkedScreens::Screen> &screens) const;

    StagePlayer *m_player; // not owned
    SensorWatch m_sensor;
    LinkedScreens m_screens;
    QTimer m_timer; // while times run down
    // children of this
    QLabel *m_sensorLabel = nullptr;
    QLabel *m_screensLabel = nullptr;
    QLabel *m_nextLabel = nullptr;
};

} // namespace Player
