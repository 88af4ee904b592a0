#include "demo/player/LogRecordEvent.h"

#include <QCoreApplication>
#include <QStringList>

namespace Player {

using Analysis::Entry;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Player::LogRecordEvent", text);
}

/// "#5  Women 25-54"
QString sequenceText(int number, const Analysis::Plan &plan)
{
    const QString name = plan.name(number);
    const QString text = QLatin1Char('#') + QString::number(number);
    return name.isEmpty() ? text : text + QLatin1String("  ") + name;
}

QString determinedText(const QVector<int> &numbers, const Analysis::Plan &plan)
{
    QStringList sequences;
    for (const int number : numbers)
        sequences << sequenceText(number, plan);
    return sequences.isEmpty() ? tr("nothing") : sequences.join(QLatin1String(", "));
}

QString detailsOf(const Entry &record, const Analysis::Plan &plan)
{
    switch (record.kind) {
    case Entry::Determined:
        return determinedText(record.numbers, plan);
    case Entry::Restricted:
        return tr("%1, within %2 ms")
            .arg(sequenceText(record.number, plan), QString::number(record.limitMs));
    case Entry::Started:
        return tr("sensor program started");
    case Entry::Stopped:
        return tr("sensor program stopped");
    case Entry::Unknown:
        return tr("line %1: %2").arg(QString::number(record.position.line), record.text);
    case Entry::Frame:
    case Entry::Error:
        break;
    }
    return record.text;
}

QString nameOf(Entry::Kind kind)
{
    switch (kind) {
    case Entry::Determined:
        return QStringLiteral("determined");
    case Entry::Restricted:
        return QStringLiteral("restricted");
    case Entry::Started:
    case Entry::Stopped:
        return QStringLiteral("process");
    case Entry::Error:
        return QStringLiteral("error");
    case Entry::Frame:
        return QStringLiteral("frame");
    case Entry::Unknown:
        break;
    }
    return QStringLiteral("unreadable");
}

/// Of the events of a stage that plays, the one with the colour of this.
PlayerEvent::Kind kindOf(Entry::Kind kind)
{
    switch (kind) {
    case Entry::Determined:
        return PlayerEvent::Switch;
    case Entry::Restricted:
        return PlayerEvent::Play;
    case Entry::Started:
    case Entry::Stopped:
        return PlayerEvent::Status;
    default:
        return PlayerEvent::Log;
    }
}

} // namespace

PlayerEvent eventOf(const Entry &record, const Analysis::Plan &plan)
{
    PlayerEvent event;
    event.kind = kindOf(record.kind);
    event.signal = nameOf(record.kind);
    event.details = detailsOf(record, plan);
    event.time = record.time.time();
    return event;
}

} // namespace Player
