#pragma once

#include <QObject>
#include <QTemporaryDir>
#include <QTimer>

namespace Desk {

class ViewerDesk;

/// Tells the simulator who stands on a desk, by a file of its own that is replaced in one step with
/// each change. Dragging somebody changes the desk more often than a sensor looks, so that the file
/// is written twenty times a second at most; the last state always is. It is gone with this object.
class LiveFile : public QObject
{
    Q_OBJECT

public:
    /// Writes the desk as it is now. @p desk has to outlive this.
    explicit LiveFile(const ViewerDesk *desk, QObject *parent = nullptr);

    /// For the simulator's --live or its variable; the same for good. Empty when there is no place
    /// for temporary files, of which failed() tells.
    QString fileName() const { return m_fileName; }

signals:
    /// Writing has failed for a while, with the reason for the user; it is tried on. Once, until it
    /// succeeds again.
    void failed(const QString &reason);

private:
    void takeChange();
    void takeTime();
    void write();
    QString tryToWrite() const; ///< returns the reason when it fails

    const ViewerDesk *m_desk;
    QTemporaryDir m_directory;
    QString m_fileName;
    QTimer m_timer; // runs after each attempt
    bool m_isStale = false; // the file does not tell of the desk's last state
    int m_failures = 0; // in a row
};

} // namespace Desk
