#pragma once

#include <QDateTime>
#include <QString>

#include <memory>

class QGraphicsTextItem;
class QTextDocument;

/// The calls to Qt that a frame cannot do without, and nothing around them.
namespace Bench {

/// A message of the panel, with the panel's font but no text yet.
std::unique_ptr<QGraphicsTextItem> bareItem();

/// @p html as a message that is laid out once, for @p width.
std::unique_ptr<QGraphicsTextItem> bareMessage(const QString &html, qreal width);

/// The same of a plain @p text.
std::unique_ptr<QGraphicsTextItem> bareText(const QString &text, qreal width);

/// The plain text of @p html by way of @p document.
QString bareReport(QTextDocument &document, const QString &html);

/// Appends framed records to one file a day, under a lock file.
class BareLog
{
public:
    explicit BareLog(const QString &directory);

    bool write(const QString &message, const QString &levelName);

private:
    const QString m_directory;
    QDateTime m_lastCleanUp;
};

} // namespace Bench
