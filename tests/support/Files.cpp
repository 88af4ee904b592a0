#include "tests/support/Files.h"

#include <QFile>

namespace KrTest {

bool writeFile(const QString &name, const QByteArray &content)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString readText(const QString &name)
{
    QString text = QString::fromUtf8(readFile(name));
#ifdef Q_OS_WIN
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
#endif
    return text;
}

} // namespace KrTest
