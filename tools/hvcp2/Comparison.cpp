#include "tools/hvcp2/Comparison.h"

#include "tools/analysis/Coverage.h"
#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Csv.h"
#include "tools/hvcp2/TotalsReport.h"
#include "tools/hvcp2/Words.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <set>

namespace Hvcp2 {

using namespace Analysis;

namespace {

constexpr std::array<const char *, 2> SideNames{"A", "B"};

QString number(qint64 value)
{
    return QString::number(value);
}

double perHour(qint64 count, qint64 ms)
{
    return ms == 0 ? 0 : static_cast<double>(count) * 3600000 / static_cast<double>(ms);
}

QString rateText(double rate)
{
    return QString::number(rate, 'f', 1);
}

/// "1234  12.3 %"
QString shareText(qint64 part, qint64 whole)
{
    if (whole == 0)
        return number(part);
    return number(part) + QLatin1Char(' ') + shareWord(part, whole).rightJustified(7);
}

QString spacingText(const Spacing &spacing, qint64 ms)
{
    return spacing.count() == 0 ? QStringLiteral("-") : durationWord(ms);
}

QJsonObject toJson(const Spacing &spacing)
{
    if (spacing.count() == 0)
        return {};
    return {{QStringLiteral("mean"), spacing.meanMs()},
        {QStringLiteral("shortest"), spacing.shortestMs()},
        {QStringLiteral("longest"), spacing.longestMs()}};
}

/// Empty where there is no number.
QString csvCell(const QJsonValue &value)
{
    return value.isDouble() ? csvNumber(value.toDouble()) : QString();
}

/// Null when the content takes no part.
const ContentOutcome *contentOf(const PlanOutcome &outcome, int number)
{
    const QVector<ContentOutcome> &contents = outcome.contents();
    const auto found = std::find_if(contents.cbegin(), contents.cend(),
        [number](const ContentOutcome &content) { return content.number == number; });
    return found == contents.cend() ? nullptr : &*found;
}

QJsonArray contentsJson(const Plan &plan, const PlanOutcome &outcome)
{
    QJsonArray contents;
    for (const ContentOutcome &content : outcome.contents()) {
        contents.append(QJsonObject{{QStringLiteral("number"), content.number},
            {QStringLiteral("name"), plan.name(content.number)},
            {QStringLiteral("started"), content.started},
            {QStringLiteral("restricted"), content.restricted},
            {QStringLiteral("cut"), content.cut},
            {QStringLiteral("betweenStartsMs"), toJson(content.starts)}});
    }
    return contents;
}

QJsonArray leftOutJson(const PlanOutcome &outcome)
{
    QJsonArray leftOut;
    for (std::size_t gender = 0; gender < CoveredGenders.size(); ++gender) {
        for (std::size_t band = 0; band < AgeBands; ++band) {
            const qint64 faces = outcome.leftOut().at(gender).at(band);
            if (faces == 0)
                continue;
            leftOut.append(
                QJsonObject{{QStringLiteral("gender"), genderWord(CoveredGenders.at(gender))},
                    {QStringLiteral("ages"), bandKey(static_cast<int>(band))},
                    {QStringLiteral("faces"), faces}});
        }
    }
    return leftOut;
}

} // namespace

Comparison::Side::Side(const Plan &given)
    : plan(given)
    , decider(given)
    , outcome(given)
{ }

Comparison::Comparison(const Plan &first, const Plan &second)
    : m_sides{Side(first), Side(second)}
{ }

void Comparison::add(const Entry &entry)
{
    if (entry.kind != Entry::Frame)
        return;
    m_hasWholeSeconds = m_hasWholeSeconds || entry.timeToleranceMs > 0;
    for (Side &side : m_sides)
        side.outcome.add(side.decider.decide(entry.text, entry.time));
}

QString Comparison::toText(const Paint &paint) const
{
    QString text = headText(paint) + QLatin1Char('\n') + figuresText(paint);
    for (std::size_t i = 0; i < m_sides.size(); ++i) {
        text += QLatin1Char('\n')
            + paint.heading(QLatin1String("Contents of ") + QLatin1String(SideNames.at(i)))
            + QLatin1Char('\n') + contentsText(m_sides.at(i), paint);
    }
    text += leftOutText(paint) + QLatin1Char('\n')
        + wrapped(QStringLiteral("Faces are counted in each frame: the same person is one face in"
                                 " each of them. A content is taken for on as long as no other one"
                                 " was started. Gaps of more than a minute between two frames are"
                                 " no watched time."),
            0);
    if (m_hasWholeSeconds)
        text += wrapped(QStringLiteral("The times of a log are whole seconds: of starts close to"
                                       " the restriction's end some may differ."),
            0);
    return text;
}

QString Comparison::headText(const Paint &paint) const
{
    QString text;
    for (std::size_t i = 0; i < m_sides.size(); ++i) {
        const Plan &plan = m_sides.at(i).plan;
        text += paint.heading(QLatin1String(SideNames.at(i))) + QLatin1String("  ")
            + fitted(screenWord(plan) + QLatin1String(": ") + printable(plan.fileName), 77)
            + QStringLiteral("\n   restricted for %1, %2 at a time\n")
                  .arg(durationWord(plan.settings.eventSendingLimit),
                      number(plan.settings.concurrent));
    }
    return text;
}

QString Comparison::figuresText(const Paint &paint) const
{
    const PlanOutcome &any = m_sides.front().outcome; // both have seen the same
    QString text
        = QStringLiteral("%1 frames with %2 faces, watched for %3\n\n")
              .arg(number(any.frames()), number(any.faces()), durationWord(any.watchedMs()));
    TextTable table;
    table.addRow({QString(), QStringLiteral("A"), QStringLiteral("B")});
    table.alignRight(1);
    table.alignRight(2);
    const auto add = [&](const char *name, auto figure) {
        table.addRow(
            {QLatin1String(name), figure(m_sides.front().outcome), figure(m_sides.back().outcome)});
    };
    const auto addFaces = [&](const char *name, auto faces) {
        add(name,
            [faces](const PlanOutcome &side) { return shareText(faces(side), side.faces()); });
    };
    add("Starts an hour",
        [](const PlanOutcome &side) { return rateText(perHour(side.starts(), side.watchedMs())); });
    add("Switches an hour", [](const PlanOutcome &side) {
        return rateText(perHour(side.switches(), side.watchedMs()));
    });
    add("Between switches, shortest", [](const PlanOutcome &side) {
        return spacingText(side.switchSpacing(), side.switchSpacing().shortestMs());
    });
    add("Between switches, mean", [](const PlanOutcome &side) {
        return spacingText(side.switchSpacing(), side.switchSpacing().meanMs());
    });
    add("Between switches, longest", [](const PlanOutcome &side) {
        return spacingText(side.switchSpacing(), side.switchSpacing().longestMs());
    });
    addFaces("Faces served", [](const PlanOutcome &side) { return side.served(); });
    addFaces("  that started their content", [](const PlanOutcome &side) { return side.starts(); });
    addFaces(
        "  whose content was on already", [](const PlanOutcome &side) { return side.alreadyOn(); });
    addFaces("Faces held back by the restriction", [](const PlanOutcome &side) {
        return side.faces(DecidedFace::Restricted) - side.alreadyOn();
    });
    addFaces("Faces cut off by \"concurrent\"",
        [](const PlanOutcome &side) { return side.faces(DecidedFace::Cut); });
    addFaces("Faces that nothing fits",
        [](const PlanOutcome &side) { return side.faces(DecidedFace::NothingFits); });
    return text + table.toText(paint);
}

QString Comparison::contentsText(const Side &side, const Paint &paint)
{
    if (side.outcome.contents().isEmpty())
        return QStringLiteral("  No content takes part.\n");
    TextTable table;
    table.addRow({QStringLiteral("#"), QStringLiteral("Name"), QStringLiteral("Starts"),
        QStringLiteral("An hour"), QStringLiteral("Every"), QStringLiteral("Held back"),
        QStringLiteral("Cut")});
    for (const int column : {0, 2, 3, 4, 5, 6})
        table.alignRight(column);
    table.limit(1, 26);
    for (const ContentOutcome &content : side.outcome.contents()) {
        table.addRow({number(content.number), printable(side.plan.name(content.number)),
            number(content.started), rateText(perHour(content.started, side.outcome.watchedMs())),
            spacingText(content.starts, content.starts.meanMs()), number(content.restricted),
            number(content.cut)});
    }
    return table.toText(paint);
}

/// The faces that nothing fits, by ages and gender; empty when there are none.
QString Comparison::leftOutText(const Paint &paint) const
{
    TextTable table;
    QStringList heading{QStringLiteral("Ages")};
    for (const char *const side : SideNames) {
        for (const PluginKrHvcP2::Gender gender : CoveredGenders)
            heading << QLatin1String(side) + QLatin1Char(' ') + genderWord(gender);
    }
    table.addRow(heading);
    for (int column = 1; column < heading.size(); ++column)
        table.alignRight(column);
    bool isEmpty = true;
    for (std::size_t band = 0; band < AgeBands; ++band) {
        QStringList row{bandWord(static_cast<int>(band))};
        qint64 sum = 0;
        for (const Side &side : m_sides) {
            for (const auto &bands : side.outcome.leftOut()) {
                sum += bands.at(band);
                row << number(bands.at(band));
            }
        }
        if (sum == 0)
            continue;
        isEmpty = false;
        table.addRow(row);
    }
    if (isEmpty)
        return {};
    return QLatin1Char('\n') + paint.heading(QStringLiteral("Faces that nothing fits"))
        + QLatin1Char('\n') + table.toText(paint);
}

QString Comparison::toCsv() const
{
    QString table = csvLine({QStringLiteral("figure"), QStringLiteral("sequence"),
        QStringLiteral("nameA"), QStringLiteral("nameB"), QStringLiteral("gender"),
        QStringLiteral("ageFrom"), QStringLiteral("a"), QStringLiteral("b")});
    const QJsonObject a = toJson(m_sides.front());
    const QJsonObject b = toJson(m_sides.back());
    const auto addRow = [&](const QString &figure, const QJsonValue &ofA, const QJsonValue &ofB) {
        table += csvLine({figure, {}, {}, {}, {}, {}, csvCell(ofA), csvCell(ofB)});
    };
    for (const char *const key : {"eventSendingLimitMs", "concurrent", "frames", "faces",
             "watchedMs", "started", "restricted", "alreadyOn", "served", "cut", "nothingFits",
             "startsPerHour", "switches", "switchesPerHour"}) {
        const QLatin1String figure(key);
        addRow(figure, a.value(figure), b.value(figure));
    }
    const QString spacing = QStringLiteral("betweenSwitchesMs");
    for (const char *const key : {"shortest", "mean", "longest"}) {
        const QLatin1String part(key);
        addRow(spacing + QLatin1Char('.') + part, a.value(spacing).toObject().value(part),
            b.value(spacing).toObject().value(part));
    }
    return table + contentsCsv() + leftOutCsv();
}

/// Contents of the same number are beside each other; they need not be the same.
QString Comparison::contentsCsv() const
{
    std::set<int> numbers;
    for (const Side &side : m_sides) {
        for (const ContentOutcome &content : side.outcome.contents())
            numbers.insert(content.number);
    }
    QString table;
    for (const int sequence : numbers) {
        QStringList start{number(sequence)};
        for (const Side &side : m_sides)
            start << side.plan.name(sequence);
        start << QString() << QString();
        const auto addRow = [&](const QString &figure, auto value) {
            QStringList cells = QStringList(figure) + start;
            for (const Side &side : m_sides) {
                const ContentOutcome *const content = contentOf(side.outcome, sequence);
                cells << (content == nullptr ? QString() : value(*content));
            }
            table += csvLine(cells);
        };
        addRow(QStringLiteral("started"),
            [](const ContentOutcome &content) { return number(content.started); });
        addRow(QStringLiteral("restricted"),
            [](const ContentOutcome &content) { return number(content.restricted); });
        addRow(QStringLiteral("cut"),
            [](const ContentOutcome &content) { return number(content.cut); });
    }
    return table;
}

QString Comparison::leftOutCsv() const
{
    QString table;
    for (std::size_t gender = 0; gender < CoveredGenders.size(); ++gender) {
        for (std::size_t band = 0; band < AgeBands; ++band) {
            const qint64 a = m_sides.front().outcome.leftOut().at(gender).at(band);
            const qint64 b = m_sides.back().outcome.leftOut().at(gender).at(band);
            if (a == 0 && b == 0)
                continue;
            table += csvLine(
                {QStringLiteral("nothingFits"), {}, {}, {}, genderWord(CoveredGenders.at(gender)),
                    bandStart(static_cast<int>(band)), number(a), number(b)});
        }
    }
    return table;
}

QJsonObject Comparison::toJson() const
{
    return {{QStringLiteral("a"), toJson(m_sides.front())},
        {QStringLiteral("b"), toJson(m_sides.back())},
        {QStringLiteral("wholeSeconds"), m_hasWholeSeconds}};
}

QJsonObject Comparison::toJson(const Side &side)
{
    const PlanOutcome &outcome = side.outcome;
    return {{QStringLiteral("file"), side.plan.fileName},
        {QStringLiteral("title"), side.plan.title}, {QStringLiteral("screen"), side.plan.screenId},
        {QStringLiteral("eventSendingLimitMs"), side.plan.settings.eventSendingLimit},
        {QStringLiteral("concurrent"), side.plan.settings.concurrent},
        {QStringLiteral("frames"), outcome.frames()}, {QStringLiteral("faces"), outcome.faces()},
        {QStringLiteral("watchedMs"), outcome.watchedMs()},
        {QStringLiteral("started"), outcome.faces(DecidedFace::Sent)},
        {QStringLiteral("restricted"), outcome.faces(DecidedFace::Restricted)},
        {QStringLiteral("alreadyOn"), outcome.alreadyOn()},
        {QStringLiteral("served"), outcome.served()},
        {QStringLiteral("cut"), outcome.faces(DecidedFace::Cut)},
        {QStringLiteral("nothingFits"), outcome.faces(DecidedFace::NothingFits)},
        {QStringLiteral("startsPerHour"), perHour(outcome.starts(), outcome.watchedMs())},
        {QStringLiteral("switches"), outcome.switches()},
        {QStringLiteral("switchesPerHour"), perHour(outcome.switches(), outcome.watchedMs())},
        {QStringLiteral("betweenSwitchesMs"), Hvcp2::toJson(outcome.switchSpacing())},
        {QStringLiteral("contents"), contentsJson(side.plan, outcome)},
        {QStringLiteral("leftOut"), leftOutJson(outcome)}};
}

} // namespace Hvcp2
