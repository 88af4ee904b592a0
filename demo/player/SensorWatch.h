#pragma once

#include <QObject>
#include <QPointer>

class QProcess;

namespace Player {

/// The sensor program of a plug-in, as any host sees it: the plug-in's object has a child that
/// keeps the program, and tells of its starts by a signal.
class SensorWatch : public QObject
{
    Q_OBJECT

public:
    explicit SensorWatch(QObject *parent = nullptr);

    /// Looks at the children of @p plugin, which may be null, and counts anew. Call it again
    /// whenever they may be others.
    void watch(QObject *plugin);
    void countAnew(); ///< the next start is no restart

    bool isKnown() const { return m_keeper; } ///< false: there is no such child
    qint64 processId() const; ///< 0: the program does not run
    int restarts() const { return m_starts > 1 ? m_starts - 1 : 0; }

signals:
    void changed();

private slots:
    void onStarted();

private:
    const QProcess *runningProcess() const;

    QPointer<QObject> m_keeper; // of the program; not owned
    int m_starts = 0;
};

} // namespace Player
