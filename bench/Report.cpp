#include "Report.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSysInfo>
#include <QTextStream>

#include <cstdio>

namespace Bench {

namespace {

QString number(double value)
{
    return QString::number(value, 'f', 2);
}

QString verdict(const Figure &figure)
{
    return figure.isMissed() ? QStringLiteral("MISSED") : QStringLiteral("ok");
}

QString goalLine(const Figure &figure)
{
    return QStringLiteral("%1 %2 %3 <= %4 %5")
        .arg(figure.goal, figure.name, number(figure.value), number(*figure.bar), verdict(figure));
}

QString tableHead()
{
    return QStringLiteral("%1%2%3%4%5%6")
        .arg(QStringLiteral("goal"), -5)
        .arg(QStringLiteral("case"), -44)
        .arg(QStringLiteral("ours us"), 11)
        .arg(QStringLiteral("bare us"), 11)
        .arg(QStringLiteral("figure"), 9)
        .arg(QStringLiteral("bar"), 8);
}

QString tableRow(const Figure &figure)
{
    const auto time = [&](double Comparison::*side) {
        return figure.times ? number(*figure.times.*side) : QString();
    };
    return QStringLiteral("%1%2%3%4%5%6 %7")
        .arg(figure.goal, -5)
        .arg(figure.name, -44)
        .arg(time(&Comparison::ours), 11)
        .arg(time(&Comparison::yardstick), 11)
        .arg(number(figure.value), 9)
        .arg(figure.bar ? number(*figure.bar) : QString(), 8)
        .arg(figure.isMissed() ? verdict(figure) : QString());
}

QJsonObject toJson(const Figure &figure)
{
    QJsonObject object{{QStringLiteral("goal"), figure.goal}, {QStringLiteral("case"), figure.name},
        {QStringLiteral("value"), figure.value}};
    if (figure.bar) {
        object.insert(QStringLiteral("bar"), *figure.bar);
        object.insert(QStringLiteral("missed"), figure.isMissed());
    }
    if (figure.times) {
        object.insert(QStringLiteral("oursUs"), figure.times->ours);
        object.insert(QStringLiteral("yardstickUs"), figure.times->yardstick);
    }
    return object;
}

void print(const QString &line)
{
    QTextStream(stdout) << line << '\n';
    std::fflush(stdout);
}

} // namespace

void Report::add(const Figure &figure)
{
    if (m_form == Table && m_figures.isEmpty())
        print(tableHead());
    m_figures.append(toJson(figure));
    m_isMissed = m_isMissed || figure.isMissed();
    if (m_form == Table)
        print(tableRow(figure));
    else if (figure.bar)
        print(goalLine(figure));
}

void Report::addRatio(const QString &goal, const QString &name, const Comparison &times, double bar)
{
    add({goal, name, times.ratio(), bar, times});
}

bool Report::writeJson(const QString &fileName) const
{
    const QJsonObject object{{QStringLiteral("qt"), QString::fromLatin1(qVersion())},
        {QStringLiteral("system"), QSysInfo::prettyProductName()},
        {QStringLiteral("architecture"), QSysInfo::currentCpuArchitecture()},
        {QStringLiteral("figures"), m_figures}};
    const QByteArray text = QJsonDocument(object).toJson();
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
}

} // namespace Bench
