#include "demo/support/JsonProblem.h"

namespace Demo {

void JsonProblem::set(const JsonPath &where, const QString &why)
{
    if (isSet())
        return;
    path = where;
    reason = why;
}

void JsonProblem::placeAt(const QByteArray &json, int offset)
{
    const QByteArray before = json.left(offset);
    line = before.count('\n') + 1;
    const QByteArray lineBefore = before.mid(before.lastIndexOf('\n') + 1);
    column = QString::fromUtf8(lineBefore.constData(), lineBefore.size()).size() + 1;
}

QString JsonProblem::text() const
{
    return path.isEmpty() ? reason : path.toString() + QLatin1String(": ") + reason;
}

QString JsonProblem::message(const QString &fileName) const
{
    if (line == 0)
        return QStringLiteral("%1: %2").arg(fileName, text());
    return QStringLiteral("%1:%2:%3: %4")
        .arg(fileName, QString::number(line), QString::number(column), text());
}

} // namespace Demo
