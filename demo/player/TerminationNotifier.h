#pragma once

#include <QObject>

#include <memory>

namespace Player {

/// Tells, in the event loop, that the user or the system asked the process to end: Ctrl+C,
/// SIGINT, SIGTERM or SIGHUP, the console window closed. Asking twice ends it at once.
/// At most one exists at a time.
class TerminationNotifier : public QObject
{
    Q_OBJECT

public:
    explicit TerminationNotifier(QObject *parent = nullptr);
    ~TerminationNotifier() override;

signals:
    void requested();

private:
    class Backend; // the platform's
    std::unique_ptr<Backend> m_backend;
};

} // namespace Player
