#pragma once

#include "Schedule.h"

#include <QElapsedTimer>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QObject>
#include <QPluginLoader>
#include <QPointer>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

namespace Kora {
class KrPluginExtScreenInterface;
class KrPluginGraphicsItem;
} // namespace Kora

namespace Soak {

struct Sample;

/// A host with the plug-in's own file, its panel in a shown view, its log and the simulated sensor.
class Host : public QObject
{
    Q_OBJECT

public:
    /// The sensor gives @p rate frames a second, 1 to 1000, until a deed changes that.
    explicit Host(int rate);
    ~Host() override;

    void start();

    /// Stops the plug-in and initializes it, so that nothing is left that was begun, and lets it
    /// show what it always shows at rest.
    void rest();

    void perform(const Event &event); ///< may run event loops

    /// What deeds have begun has come to its end.
    bool isIdle() const { return m_followUps == 0; }

    /// Nothing moves and no sensor program runs any more, after rest().
    bool isStill() const;

    /// Of plug-in, panel, dialogs, application and event loop, pending.
    int timerCount() const;

    int frames() const { return m_frames; } ///< that the plug-in has received
    int itemCount() const { return m_scene.items().size(); } ///< in the scene

    /// Fills in what the host can tell, and begins a new longest gap.
    void measure(Sample &sample);

signals:
    void complained(const QString &reason); ///< something went wrong that ought not to

private slots:
    void onDataReceived(const QString &data);
    void onContentStarted(int index);

private:
    /// What the sensor program does.
    struct Sensor
    {
        QString scenario; // file name
        int intervalMs = 0;
    };

    void beat();
    void later(int ms, const std::function<void()> &followUp);

    void initialize(int contents);
    void choose(const Sensor &sensor) const;
    void restart(const Sensor &once);
    void changeRate(quint32 value);
    void editSettings(quint32 value);
    void askAround(quint32 value);
    void takePanel();
    void replacePanel();
    void showPanel(int ms);
    void showCrowd(int ms);
    void click(const QString &buttonName);
    void clickRestart();
    void openDialog(int ms);
    void holdLog(int ms);

    QString logFile(const QString &name) const;
    QSet<QObject *> objects() const;

    const int m_rate;
    QPluginLoader m_loader;
    QTemporaryDir m_directory;
    QTemporaryDir m_logDirectory;
    QGraphicsScene m_scene;
    QGraphicsView m_view;
    QPointer<QObject> m_object; // the plug-in
    Kora::KrPluginExtScreenInterface *m_plugin = nullptr;
    Kora::KrPluginGraphicsItem *m_panel = nullptr; // belongs to the plug-in
    QTimer m_heart;
    QElapsedTimer m_sinceBeat;
    qint64 m_longestGapMs = 0;
    int m_frames = 0;
    int m_chunks = 0; // with a frame or more
    int m_followUps = 0;
    int m_starts = 0; // of the plug-in, by any deed
    Sensor m_sensor;
    int m_busyMs = 0; // to spend in the next contentStarted()
};

} // namespace Soak
