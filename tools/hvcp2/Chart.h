#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace Hvcp2 {

class Markup;

/// Numbers of one kind, a colour of a chart.
struct Series
{
    QString name;
    const char *styleClass = ""; ///< what gives its bars their colour
    QVector<qint64> values; ///< 0 or more; one for each place
};

/// Bars beside each other, each of them a pile of one number from each series.
struct BarChart
{
    QString id; ///< unique in the page
    QString title;
    QStringList places; ///< what each bar stands for
    QVector<Series> series;
};

/// Numbers in rows and columns as the strength of a colour.
struct HeatMap
{
    QString id; ///< unique in the page
    QString title;
    QStringList rows;
    QStringList columns;
    QVector<QVector<qint64>> values; ///< 0 or more; a list for each row
};

// As elements of a page; the colours are those of its style, by these classes: chart, grid, muted,
// heat, none and the ones of the series.

void writeChart(const BarChart &chart, Markup &markup);
void writeChart(const HeatMap &map, Markup &markup);

/// The smallest of 1, 2, 5, 10, 20 ... of which @p steps reach @p value.
qint64 roundStep(qint64 value, int steps);

QString groupedNumber(qint64 number); ///< "1 234 567", with narrow blanks that do not break

} // namespace Hvcp2
