#include "tools/hvcp2/CoverageSvg.h"

#include "core/screen/Gender.h"
#include "demo/stage/StageColor.h"
#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/CoverageReport.h"
#include "tools/hvcp2/Markup.h"
#include "tools/hvcp2/Words.h"

namespace Hvcp2 {

using namespace Analysis;

namespace {

// All lengths are in pixels of the picture's own size.
constexpr int Width = 960;
constexpr int Margin = 24;
constexpr int MapLeft = 128;
constexpr int YearWidth = 8;
constexpr int MapTop = 104;
constexpr int RowHeight = 52;
constexpr int RowStep = 64;
constexpr int LineHeight = 24;
constexpr int LegendColumn = (Width - 2 * Margin) / 2;
constexpr Stage::StageColor Black{0, 0, 0};
constexpr Stage::StageColor White{255, 255, 255};
constexpr Stage::StageColor KeyColor{110, 119, 129};
constexpr int TextSize = 14; // as in Style
constexpr int TitleSize = 22; // likewise

// Also for a page that holds the picture among other things.
constexpr auto Style = R"(
.coverage text { font-family: "Segoe UI", "Helvetica Neue", "DejaVu Sans", Arial, sans-serif; font-size: 14px; fill: #1b1f24; }
.coverage .page { fill: #ffffff; }
.coverage .title { font-size: 22px; font-weight: 600; }
.coverage .heading { font-weight: 600; }
.coverage .muted { fill: #57606a; }
.coverage .tick { stroke: #d0d7de; }
.coverage .part { stroke: #57606a; stroke-opacity: 0.5; }
.coverage .hole { fill: #fff1f0; stroke: #cf222e; stroke-dasharray: 4 3; }
.coverage .lack { fill: #cf222e; }
@media (prefers-color-scheme: dark) {
.coverage text { fill: #e6edf3; }
.coverage .page { fill: #0d1117; }
.coverage .muted { fill: #9198a1; }
.coverage .tick { stroke: #30363d; }
.coverage .hole { fill: #2d1214; stroke: #ff7b72; }
.coverage .lack { fill: #ff7b72; }
}
)";

int xOf(int age)
{
    return MapLeft + (age - LowestCoveredAge) * YearWidth;
}

class Picture : private Markup
{
public:
    Picture(const Plan &plan, const Coverage &coverage, QXmlStreamWriter &writer)
        : Markup(writer)
        , m_plan(plan)
        , m_coverage(coverage)
        , m_findings(coverageFindings(plan, coverage))
    { }

    void draw()
    {
        begin();
        drawHeading();
        drawAxis();
        int top = MapTop;
        for (const GenderCoverage &row : m_coverage.genders) {
            drawRow(row, top);
            top += RowStep;
        }
        drawKey(top + 10);
        drawLegend(legendTop());
        drawFindings(findingsTop());
        end();
    }

private:
    int legendTop() const { return MapTop + m_coverage.genders.size() * RowStep + 58; }
    int legendRows() const { return (m_coverage.contents.size() + 1) / 2; }
    int findingsTop() const { return legendTop() + (legendRows() + 1) * LineHeight; }
    int height() const { return findingsTop() + (qMax(1, m_findings.size()) + 1) * LineHeight; }

    void begin()
    {
        startPicture("coverage", QStringLiteral("coverage"), Width, height(),
            QLatin1String("Who gets what: ") + screenWord(m_plan), description());
        element("style", QString::fromLatin1(Style));
        drawPatterns();
        start("rect");
        attribute("class", QStringLiteral("page"));
        attribute("width", QStringLiteral("100%"));
        attribute("height", QStringLiteral("100%"));
        end();
    }

    /// The whole map in words.
    QString description() const
    {
        QStringList sentences;
        for (const GenderCoverage &row : m_coverage.genders) {
            QStringList parts;
            const QVector<Band> bands = row.bands();
            for (const Band &band : bands)
                parts << bandWords(band);
            sentences << QStringLiteral("%1: %2.").arg(
                genderLabel(row), parts.join(QLatin1String("; ")));
        }
        return sentences.join(QLatin1Char(' '));
    }

    static QString genderLabel(const GenderCoverage &row)
    {
        switch (row.gender) {
        case PluginKrHvcP2::Female:
            return QStringLiteral("Female");
        case PluginKrHvcP2::Male:
            return QStringLiteral("Male");
        default:
            return QStringLiteral("Unknown");
        }
    }

    QString bandWords(const Band &band) const
    {
        const QString ages = agesWord(band.ages);
        if (band.choice.fit == Choice::Nothing)
            return ages + QLatin1String(" nothing");
        const QString content = contentWord(m_plan, band.choice.number);
        return band.choice.fit == Choice::Full
            ? QStringLiteral("%1 %2").arg(ages, content)
            : QStringLiteral("%1 %2 (%3)").arg(ages, content, fitWord(band.choice.fit));
    }

    /// Letters and patterns have the same colour on a content's one.
    static QString patternId(Choice::Fit fit, const Stage::StageColor &ink)
    {
        return QStringLiteral("coverage-%1-%2").arg(asKey(fitWord(fit)), ink.name().mid(1));
    }

    void startPattern(Choice::Fit fit, const Stage::StageColor &ink, int size)
    {
        start("pattern");
        attribute("id", patternId(fit, ink));
        attribute("width", size);
        attribute("height", size);
        attribute("patternUnits", QStringLiteral("userSpaceOnUse"));
    }

    /// What lies over the colour of a content that is shown in place of another.
    void drawPatterns()
    {
        start("defs");
        for (const Stage::StageColor &ink : {Black, White}) {
            startPattern(Choice::ByDefault, ink, 10);
            start("path");
            attribute("d", QStringLiteral("M-2 2 L2 -2 M0 10 L10 0 M8 12 L12 8"));
            attribute("stroke", ink.name());
            attribute("stroke-opacity", QStringLiteral("0.45"));
            attribute("stroke-width", 3);
            end();
            end();
            startPattern(Choice::ByAge, ink, 8);
            start("circle");
            attribute("cx", 4);
            attribute("cy", 4);
            attribute("r", 2);
            attribute("fill", ink.name());
            attribute("fill-opacity", QStringLiteral("0.6"));
            end();
            end();
        }
        end();
    }

    void drawHeading()
    {
        label(Margin, 40, "title",
            fitted(screenWord(m_plan), columnsFor(Width - 2 * Margin, TitleSize)));
        label(Margin, 64, "muted",
            QStringLiteral("Which content a viewer gets, by age in years and gender"));
    }

    void drawAxis()
    {
        const int bottom = MapTop + (m_coverage.genders.size() - 1) * RowStep + RowHeight;
        for (int age = LowestCoveredAge; age <= HighestCoveredAge; age += 10) {
            start("line");
            attribute("class", QStringLiteral("tick"));
            attribute("x1", xOf(age));
            attribute("x2", xOf(age));
            attribute("y1", MapTop - 8);
            attribute("y2", bottom);
            end();
            start("text");
            attribute("class", QStringLiteral("muted"));
            attribute("x", xOf(age));
            attribute("y", MapTop - 12);
            attribute("text-anchor", QStringLiteral("middle"));
            text(QString::number(age));
            end();
        }
    }

    void drawRow(const GenderCoverage &row, int top)
    {
        label(Margin, top + RowHeight / 2 + 5, "heading", genderLabel(row));
        const QVector<Band> bands = row.bands();
        for (const Band &band : bands) {
            start("g");
            element("title", genderLabel(row) + QLatin1Char(' ') + bandWords(band));
            drawBand(band, top);
            end();
        }
    }

    void drawBand(const Band &band, int top)
    {
        const int x = xOf(band.ages.from);
        const int width = (band.ages.to - band.ages.from + 1) * YearWidth;
        drawChoice(band.choice, x, top, width, RowHeight);
        const bool isHole = band.choice.fit == Choice::Nothing;
        const QString full
            = isHole ? fitWord(band.choice.fit) : contentWord(m_plan, band.choice.number);
        const QString number = QLatin1Char('#') + QString::number(band.choice.number);
        const int columns = columnsFor(width - 10, TextSize);
        QString label = fitted(full, qMax(1, columns));
        if (label != full) // a piece of a name helps where some of it is left
            label = isHole || columns < 8 ? QString() : label;
        if (label.isEmpty() && !isHole && columns >= number.size())
            label = number;
        if (!label.isEmpty())
            drawLabel(band.choice, label, x + width / 2, top + RowHeight / 2);
    }

    void drawLabel(const Choice &choice, const QString &label, int centre, int middle)
    {
        const bool isHole = choice.fit == Choice::Nothing;
        if (!isHole && choice.fit != Choice::Full) { // letters are not read well over a pattern
            const int width = widthOf(columnsOf(label), TextSize) + 8;
            startRectangle(centre - width / 2, middle - 11, width, 22);
            attribute("rx", 4);
            attribute("fill", colorOf(choice.number).name());
            end();
        }
        start("text");
        attribute("x", centre);
        attribute("y", middle + 5);
        attribute("text-anchor", QStringLiteral("middle"));
        if (isHole)
            attribute("class", QStringLiteral("lack"));
        else
            attribute("style", QLatin1String("fill: ") + inkOn(colorOf(choice.number)).name());
        text(label);
        end();
    }

    void drawChoice(const Choice &choice, int x, int y, int width, int height)
    {
        if (choice.fit == Choice::Nothing)
            drawFit(choice.fit, {}, x, y, width, height);
        else
            drawFit(choice.fit, colorOf(choice.number), x, y, width, height);
    }

    void drawFit(
        Choice::Fit fit, const Stage::StageColor &color, int x, int y, int width, int height)
    {
        const bool isHole = fit == Choice::Nothing;
        startRectangle(x + 1, y + 1, width - 2, height - 2);
        attribute("class", QLatin1String(isHole ? "hole" : "part"));
        if (!isHole)
            attribute("fill", color.name());
        end();
        if (isHole || fit == Choice::Full)
            return;
        startRectangle(x + 1, y + 1, width - 2, height - 2);
        attribute("fill", QStringLiteral("url(#%1)").arg(patternId(fit, inkOn(color))));
        end();
    }

    Stage::StageColor colorOf(int number) const { return m_plan.entries.at(number - 1).color; }

    void drawKey(int top)
    {
        int x = MapLeft;
        const auto add = [&](Choice::Fit fit, const QString &meaning) {
            drawFit(fit, KeyColor, x, top, 28, 18);
            label(x + 36, top + 13, "muted", meaning);
            x += 202;
        };
        add(Choice::Full, QStringLiteral("fits gender and age"));
        add(Choice::ByDefault, QStringLiteral("default of the gender"));
        add(Choice::ByAge, QStringLiteral("fits the age alone"));
        add(Choice::Nothing, QStringLiteral("nothing fits"));
    }

    void drawLegend(int top)
    {
        const int rows = legendRows();
        for (int i = 0; i < m_coverage.contents.size(); ++i) {
            const int number = m_coverage.contents.at(i).number;
            const PlannedContent &entry = m_plan.entries.at(number - 1);
            const int x = Margin + i / rows * LegendColumn;
            const int y = top + i % rows * LineHeight;
            drawFit(Choice::Full, entry.color, x, y, 20, 18);
            const QString audience = audienceOf(entry);
            const int columns = columnsFor(LegendColumn - 40, TextSize) - audience.size() - 2;
            start("text");
            attribute("x", x + 28);
            attribute("y", y + 13);
            text(fitted(contentWord(m_plan, number), columns));
            start("tspan");
            attribute("class", QStringLiteral("muted"));
            attribute("dx", 8);
            text(audience);
            end();
            end();
        }
    }

    static QString audienceOf(const PlannedContent &entry)
    {
        const QString audience
            = QStringLiteral("%1, %2").arg(agesWord({entry.content.ageMin, entry.content.ageMax}),
                PluginKrHvcP2::genderToText(entry.content.genders));
        return entry.content.isDefault ? audience + QLatin1String(", default") : audience;
    }

    void drawFindings(int top)
    {
        if (m_findings.isEmpty()) {
            label(Margin, top + 13, "",
                QStringLiteral("Everybody gets a content, and every content reaches somebody."));
            return;
        }
        label(Margin, top + 13, "heading", QStringLiteral("Worth a look"));
        for (int i = 0; i < m_findings.size(); ++i) {
            label(Margin, top + 13 + (i + 1) * LineHeight, "",
                fitted(m_findings.at(i), columnsFor(Width - 2 * Margin, TextSize)));
        }
    }

    const Plan &m_plan;
    const Coverage &m_coverage;
    const QStringList m_findings;
};

} // namespace

void writeCoverage(const Plan &plan, const Coverage &coverage, QXmlStreamWriter &writer)
{
    Picture(plan, coverage, writer).draw();
}

QByteArray coverageSvg(const Plan &plan, const Coverage &coverage)
{
    QByteArray svg;
    QXmlStreamWriter writer(&svg);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(1);
    writer.writeStartDocument();
    writeCoverage(plan, coverage, writer);
    writer.writeEndDocument();
    return svg;
}

} // namespace Hvcp2
