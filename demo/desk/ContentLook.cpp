#include "demo/desk/ContentLook.h"

namespace Desk {

QColor contentColor(const Analysis::Plan &plan, int number)
{
    if (number < 1 || number > plan.entries.size())
        return Qt::gray;
    const Stage::StageColor &color = plan.entries.at(number - 1).color;
    return {color.red, color.green, color.blue};
}

QColor contentInk(const QColor &color)
{
    const Stage::StageColor ink = Stage::inkOn({color.red(), color.green(), color.blue()});
    return {ink.red, ink.green, ink.blue};
}

QString contentTitle(const Analysis::Plan &plan, int number)
{
    return QStringLiteral("#%1 %2").arg(QString::number(number), plan.name(number)).simplified();
}

QString toolTipOf(const QStringList &lines)
{
    if (lines.isEmpty())
        return {};
    QStringList html;
    for (const QString &line : lines)
        html << line.toHtmlEscaped();
    html.first() = QStringLiteral("<b>%1</b>").arg(html.constFirst());
    return html.join(QLatin1String("<br>"));
}

} // namespace Desk
