#include "tools/hvcp2/Paint.h"

#include <cmath>

namespace Hvcp2 {

using Stage::StageColor;

namespace {

// Where black and white are equally far from a colour, by the contrast ratio of WCAG 2.
constexpr double MiddleLuminance = 0.179;

double linear(int part)
{
    const double value = part / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(const StageColor &color)
{
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

QString partsOf(const StageColor &color)
{
    return QStringLiteral("2;%1;%2;%3")
        .arg(QString::number(color.red), QString::number(color.green), QString::number(color.blue));
}

} // namespace

StageColor inkOn(const StageColor &background)
{
    return luminance(background) > MiddleLuminance ? StageColor{0, 0, 0}
                                                   : StageColor{255, 255, 255};
}

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
