#include "demo/support/UserFile.h"

#include "demo/support/SharedFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace Demo::UserFile {

namespace {

constexpr qint64 Mebibyte = Q_INT64_C(1024) * 1024; // bytes

QString tr(const char *text)
{
    return QCoreApplication::translate("Demo::UserFile", text);
}

} // namespace

bool isNoFile(const QString &fileName)
{
    const QFileInfo info(fileName);
    return info.exists() && !info.isFile();
}

QString objection(const QString &fileName)
{
    if (!QFileInfo::exists(fileName))
        return tr("no such file");
    return isNoFile(fileName) ? tr("is not a file") : QString();
}

QString sizeObjection(qint64 bytes, int maxMebibytes)
{
    return bytes > maxMebibytes * Mebibyte ? tr("is larger than %1 MiB").arg(maxMebibytes)
                                           : QString();
}

std::optional<QByteArray> read(const QString &fileName, int maxMebibytes, QString *error)
{
    QString reason = objection(fileName);
    QByteArray content;
    if (reason.isEmpty()) {
        QFile file(fileName);
        QString whyNot;
        if (!openShared(file, &whyNot)) {
            reason = tr("cannot be read: %1").arg(whyNot);
        } else if (file.size() > maxMebibytes * Mebibyte) {
            reason = sizeObjection(file.size(), maxMebibytes);
        } else {
            content = file.read(maxMebibytes * Mebibyte + 1); // it may have grown
            reason = sizeObjection(content.size(), maxMebibytes);
        }
    }
    if (reason.isEmpty())
        return content;
    *error = QStringLiteral("%1: %2").arg(fileName, reason);
    return std::nullopt;
}

} // namespace Demo::UserFile
