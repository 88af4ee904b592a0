#include "BareCalls.h"

#include <QDir>
#include <QFile>
#include <QGraphicsTextItem>
#include <QTextDocument>
#include <QTextStream>

namespace Bench {

std::unique_ptr<QGraphicsTextItem> bareItem()
{
    auto item = std::make_unique<QGraphicsTextItem>();
    item->setFont(QFont(QStringLiteral("Yu Gothic"), 11));
    item->setDefaultTextColor(Qt::white);
    return item;
}

std::unique_ptr<QGraphicsTextItem> bareMessage(const QString &html, qreal width)
{
    auto item = bareItem();
    item->setTextWidth(width);
    item->setHtml(html);
    item->document()->size();
    return item;
}

std::unique_ptr<QGraphicsTextItem> bareText(const QString &text, qreal width)
{
    auto item = bareItem();
    item->setTextWidth(width);
    item->setPlainText(text);
    item->document()->size();
    return item;
}

QString bareReport(QTextDocument &document, const QString &html)
{
    document.clear();
    document.setHtml(html);
    return document.toPlainText();
}

BareLog::BareLog(const QString &directory)
    : m_directory(directory)
{ }

bool BareLog::write(const QString &message, const QString &levelName)
{
    const QDir directory(m_directory);
    if (!directory.exists() && !directory.mkpath(directory.absolutePath()))
        return false;

    const QString lockPath = directory.absoluteFilePath(QStringLiteral("bare.lock"));
    if (QFile::exists(lockPath))
        return false;
    QFile lock(lockPath);
    if (!lock.open(QIODevice::WriteOnly))
        return false;
    lock.flush();
    lock.close();

    const QString day = QStringLiteral("yyyyMMdd");
    if (!QDir(m_directory).exists())
        return false;
    const QDateTime today = QDateTime::currentDateTime();
    if (m_lastCleanUp.toString(day) != today.toString(day))
        m_lastCleanUp = today;

    const QDateTime now = QDateTime::currentDateTime();
    const QString header = QStringLiteral(">> %1 [%2]")
                               .arg(now.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")), levelName);
    const QString record = QStringLiteral("%1\n%2\n%3\n\n")
                               .arg(header, -40, QLatin1Char('='))
                               .arg(message.trimmed())
                               .arg(QStringLiteral(" <<"), 40, QLatin1Char('='));

    QFile file(directory.absoluteFilePath(
        QStringLiteral("%1_%2.%3")
            .arg(QStringLiteral("bare"), now.toString(day), QStringLiteral("txt"))));
    const bool isOpen = file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text);
    if (isOpen) {
        QTextStream stream(&file);
        stream.setCodec("UTF-8");
        stream << record;
        stream.flush();
        file.close();
    }
    if (QFile::exists(lockPath))
        QFile::remove(lockPath);
    return isOpen;
}

} // namespace Bench
