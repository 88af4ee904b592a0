#include "tools/hvcp2/Chart.h"

#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Markup.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace Hvcp2 {

namespace {

// All lengths are in pixels of the picture's own size.
constexpr int Width = 400; // letters can be read on a phone
constexpr int LetterSize = 12; // as in the style of the page
constexpr int LineHeight = 18;
constexpr int TextRise = 4; // from the middle of a line to its letters' foot
constexpr int Gap = 8;
constexpr int PlotHeight = 180;
constexpr int KeySize = 12;
constexpr int MaxBarWidth = 44;
constexpr int Steps = 4; // of the axis, at most
constexpr int RowHeight = 22;
constexpr int MaxLabelColumns = 20; // of a row
constexpr int KeySteps = 5; // of a heat map
constexpr double FaintestHeat = 0.14; // a number that is not 0 is seen

qint64 largestOf(const QVector<qint64> &values)
{
    return values.isEmpty() ? 0 : *std::max_element(values.cbegin(), values.cend());
}

/// Every how many labels there is room for one in @p slot pixels each.
int labelStride(const QStringList &labels, double slot)
{
    int columns = 0;
    for (const QString &label : labels)
        columns = std::max(columns, columnsOf(label));
    return std::max(1, static_cast<int>(std::ceil((widthOf(columns, LetterSize) + 4) / slot)));
}

/// "The largest number is 1 234: 10:00."
QString descriptionOf(qint64 largest, const QString &place)
{
    if (largest == 0)
        return QStringLiteral("There are none.");
    return QStringLiteral("The largest number is %1: %2.").arg(groupedNumber(largest), place);
}

class Bars
{
public:
    Bars(const BarChart &chart, Markup &markup)
        : m_chart(chart)
        , m_markup(markup)
        , m_sums(chart.places.size())
    {
        for (const Series &series : chart.series) {
            for (int i = 0; i < m_sums.size(); ++i)
                m_sums[i] += series.values.at(i);
        }
        m_step = roundStep(largestOf(m_sums), Steps);
        m_end = std::max(m_step, (largestOf(m_sums) + m_step - 1) / m_step * m_step);
        m_left = widthOf(groupedNumber(m_end).size(), LetterSize) + Gap;
        m_slot = static_cast<double>(Width - m_left) / std::max(1, m_sums.size());
    }

    void draw()
    {
        const auto largest = std::max_element(m_sums.cbegin(), m_sums.cend());
        const QString place = m_sums.isEmpty()
            ? QString()
            : m_chart.places.at(static_cast<int>(largest - m_sums.cbegin()));
        m_markup.startPicture("chart", m_chart.id, Width, bottom() + LineHeight + Gap,
            m_chart.title, descriptionOf(largestOf(m_sums), place));
        drawKey();
        drawAxis();
        for (int i = 0; i < m_sums.size(); ++i)
            drawBar(i);
        drawPlaces();
        m_markup.end();
    }

private:
    int top() const { return m_chart.series.size() > 1 ? LineHeight + 2 * Gap : Gap; }
    int bottom() const { return top() + PlotHeight; }
    int xOf(int place) const { return m_left + static_cast<int>(std::lround(place * m_slot)); }

    int yOf(qint64 value) const
    {
        const double share = static_cast<double>(value) / static_cast<double>(m_end);
        return bottom() - static_cast<int>(std::lround(share * PlotHeight));
    }

    void drawKey()
    {
        if (m_chart.series.size() < 2)
            return;
        int x = m_left;
        for (const Series &series : m_chart.series) {
            m_markup.startRectangle(x, 2, KeySize, KeySize);
            m_markup.attribute("class", series.styleClass);
            m_markup.end();
            x += KeySize + Gap / 2;
            m_markup.label(x, KeySize, "", series.name);
            x += widthOf(columnsOf(series.name), LetterSize) + 2 * Gap;
        }
    }

    void drawAxis()
    {
        for (qint64 value = 0; value <= m_end; value += m_step) {
            m_markup.start("line");
            m_markup.attribute("class", "grid");
            m_markup.attribute("x1", m_left);
            m_markup.attribute("x2", Width);
            m_markup.attribute("y1", yOf(value));
            m_markup.attribute("y2", yOf(value));
            m_markup.end();
            m_markup.label(
                m_left - Gap, yOf(value) + TextRise, "muted", groupedNumber(value), "end");
        }
    }

    void drawBar(int place)
    {
        if (m_sums.at(place) == 0)
            return;
        m_markup.start("g");
        m_markup.element("title", titleOf(place));
        const int width = std::max(1, std::min(MaxBarWidth, static_cast<int>(m_slot * 0.8)));
        const int x = xOf(place) + (static_cast<int>(m_slot) - width) / 2;
        qint64 below = 0;
        for (const Series &series : m_chart.series) {
            const qint64 value = series.values.at(place);
            const int y = yOf(below + value);
            const int height = yOf(below) - y;
            below += value;
            if (height == 0)
                continue;
            m_markup.startRectangle(x, y, width, height);
            m_markup.attribute("class", series.styleClass);
            m_markup.end();
        }
        m_markup.end();
    }

    /// "09:00: female 3, male 4"
    QString titleOf(int place) const
    {
        QStringList parts;
        for (const Series &series : m_chart.series)
            parts << series.name + QLatin1Char(' ') + groupedNumber(series.values.at(place));
        return m_chart.places.at(place) + QLatin1String(": ") + parts.join(QLatin1String(", "));
    }

    void drawPlaces()
    {
        const int stride = labelStride(m_chart.places, m_slot);
        for (int i = 0; i < m_chart.places.size(); i += stride) {
            const QString &place = m_chart.places.at(i);
            const int middle = xOf(i) + static_cast<int>(m_slot / 2);
            const bool fits = middle + widthOf(columnsOf(place), LetterSize) / 2 <= Width;
            m_markup.label(fits ? middle : Width, bottom() + LineHeight, "muted", place,
                fits ? "middle" : "end");
        }
    }

    const BarChart &m_chart;
    Markup &m_markup;
    QVector<qint64> m_sums; // of each bar
    qint64 m_step = 1; // of the axis
    qint64 m_end = 1; // of the axis
    int m_left = 0; // of the plot
    double m_slot = 1; // width of a bar and what is around it
};

class Heat
{
public:
    Heat(const HeatMap &map, Markup &markup)
        : m_map(map)
        , m_markup(markup)
    {
        for (const QVector<qint64> &row : map.values)
            m_largest = std::max(m_largest, largestOf(row));
        for (const QString &row : map.rows)
            m_labelColumns = std::max(m_labelColumns, columnsOf(row));
        m_labelColumns = std::min(m_labelColumns, MaxLabelColumns);
        m_left = widthOf(m_labelColumns, LetterSize) + 2 * Gap;
        m_slot = (Width - m_left) / std::max(1, map.columns.size());
    }

    void draw()
    {
        const int keyTop = RowHeight * m_map.rows.size() + LineHeight + 2 * Gap;
        m_markup.startPicture("chart", m_map.id, Width, keyTop + KeySize + Gap, m_map.title,
            descriptionOf(m_largest, placeOfLargest()));
        for (int row = 0; row < m_map.rows.size(); ++row)
            drawRow(row);
        int stride = labelStride(m_map.columns, m_slot);
        while (stride < m_map.columns.size() && m_map.columns.size() % stride != 0)
            ++stride; // a day in equal parts
        for (int column = 0; column < m_map.columns.size(); column += stride) {
            m_markup.label(m_left + column * m_slot + m_slot / 2,
                RowHeight * m_map.rows.size() + LineHeight, "muted", m_map.columns.at(column),
                "middle");
        }
        drawKey(keyTop);
        m_markup.end();
    }

private:
    QString placeOf(int row, int column) const
    {
        return m_map.rows.at(row) + QLatin1String(", ") + m_map.columns.at(column);
    }

    QString placeOfLargest() const
    {
        for (int row = 0; row < m_map.rows.size(); ++row) {
            const int column = m_map.values.at(row).indexOf(m_largest);
            if (column >= 0)
                return placeOf(row, column);
        }
        return {};
    }

    void drawRow(int row)
    {
        m_markup.label(m_left - Gap, row * RowHeight + RowHeight / 2 + TextRise, "",
            fitted(m_map.rows.at(row), m_labelColumns), "end");
        for (int column = 0; column < m_map.columns.size(); ++column) {
            const qint64 value = m_map.values.at(row).at(column);
            startCell(m_left + column * m_slot, row * RowHeight, m_slot, RowHeight,
                m_largest == 0 ? 0 : static_cast<double>(value) / static_cast<double>(m_largest));
            m_markup.element(
                "title", placeOf(row, column) + QLatin1String(": ") + groupedNumber(value));
            m_markup.end();
        }
    }

    void startCell(int x, int y, int width, int height, double share)
    {
        m_markup.startRectangle(x + 1, y + 1, width - 2, height - 2);
        m_markup.attribute("class", share > 0 ? "heat" : "none");
        if (share > 0) {
            const double opacity = FaintestHeat + (1 - FaintestHeat) * share;
            m_markup.attribute("fill-opacity", QString::number(opacity, 'f', 2));
        }
    }

    void drawKey(int top)
    {
        int x = m_left;
        m_markup.label(x, top + KeySize - 2, "muted", QStringLiteral("0"));
        x += LineHeight;
        for (int step = 0; step <= KeySteps; ++step) {
            startCell(x, top - 2, LineHeight, KeySize + 4, static_cast<double>(step) / KeySteps);
            m_markup.end();
            x += LineHeight;
        }
        m_markup.label(x + Gap, top + KeySize - 2, "muted", groupedNumber(m_largest));
    }

    const HeatMap &m_map;
    Markup &m_markup;
    qint64 m_largest = 0;
    int m_labelColumns = 1; // of the rows, at most
    int m_left = 0; // of the cells
    int m_slot = 1; // width of a cell
};

} // namespace

void writeChart(const BarChart &chart, Markup &markup)
{
    Bars(chart, markup).draw();
}

void writeChart(const HeatMap &map, Markup &markup)
{
    Heat(map, markup).draw();
}

qint64 roundStep(qint64 value, int steps)
{
    constexpr qint64 Limit = std::numeric_limits<qint64>::max() / 100;
    qint64 step = 1;
    for (int i = 0; step < Limit && value > step * steps; ++i)
        step = i % 3 == 1 ? step / 2 * 5 : step * 2; // 1, 2, 5, 10
    return step;
}

QString groupedNumber(qint64 number)
{
    QString text = QString::number(number);
    for (int i = text.size() - 3; i > 0; i -= 3)
        text.insert(i, QChar(0x202f));
    return text;
}

} // namespace Hvcp2
