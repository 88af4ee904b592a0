#include "tools/hvcp2/Paint.h"

namespace Hvcp2 {

using Stage::StageColor;

namespace {

QString partsOf(const StageColor &color)
{
    return QStringLiteral("2;%1;%2;%3")
        .arg(QString::number(color.red), QString::number(color.green), QString::number(color.blue));
}

} // namespace

QString Paint::heading(const QString &text) const
{
    return with(QStringLiteral("1"), text);
}

QString Paint::warning(const QString &text) const
{
    return with(QStringLiteral("31"), text);
}

QString Paint::good(const QString &text) const
{
    return with(QStringLiteral("32"), text);
}

QString Paint::on(const StageColor &background, const QString &text) const
{
    if (m_depth != Full)
        return text;
    return with(
        QStringLiteral("48;%1;38;%2").arg(partsOf(background), partsOf(inkOn(background))), text);
}

QString Paint::with(const QString &code, const QString &text) const
{
    return m_depth == None ? text : QStringLiteral("\x1b[%1m%2\x1b[0m").arg(code, text);
}

} // namespace Hvcp2
