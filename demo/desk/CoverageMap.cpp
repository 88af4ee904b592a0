#include "demo/desk/CoverageMap.h"

#include <QLineF>

#include <algorithm>
#include <iterator>

namespace Desk {

using namespace Analysis;

namespace {

// All lengths are in heights of a line of text.
constexpr qreal Padding = 0.6;
constexpr qreal AxisHeight = 1.3;
constexpr qreal UnknownWidth = 2.6;
constexpr qreal RowGap = 0.35;
constexpr qreal SmallestRow = 1.5;
constexpr qreal LowestRow = 2.6; // with a label above the marks
constexpr qreal HighestRow = 7;
constexpr qreal LabelHeight = 1.4;
constexpr qreal KeyLine = 1.5;
constexpr qreal KeyPartWidth = 11.5;
constexpr qreal CellWidth = 12.5;
constexpr qreal CellGap = 0.3;
constexpr qreal CellHeight = 1.6;
constexpr qreal CellHeightWithNote = 2.9;
constexpr qreal MarkRadius = 0.42;
constexpr qreal PointerReach = 2; // pixels around a mark

constexpr int GenderCount = static_cast<int>(CoveredGenders.size());

int quotient(qreal length, qreal part)
{
    return part > 0 ? std::max(0, static_cast<int>(length / part)) : 0;
}

/// Places for marks of @p radius in @p room, those in its middle first; one at least.
QVector<QPointF> placesIn(const QRectF &room, qreal radius)
{
    const int columns = std::max(1, quotient(room.width(), 2 * radius));
    const int lanes = std::max(1, quotient(room.height(), 2 * radius));
    QVector<QPointF> places;
    for (int lane = 0; lane < lanes; ++lane) {
        for (int column = 0; column < columns; ++column) {
            places.append({room.left() + room.width() * (column + 0.5) / columns,
                room.top() + room.height() * (lane + 0.5) / lanes});
        }
    }
    // In steps, so that rounding does not tell apart what is equally far.
    const auto distance
        = [&room](const QPointF &place) { return qRound(QLineF(place, room.center()).length()); };
    std::stable_sort(places.begin(), places.end(),
        [&](const QPointF &a, const QPointF &b) { return distance(a) < distance(b); });
    return places;
}

bool isFree(const QPointF &place, const QVector<CoverageMark> &marks, qreal diameter)
{
    return std::none_of(marks.cbegin(), marks.cend(),
        [&](const CoverageMark &mark) { return QLineF(place, mark.center).length() < diameter; });
}

} // namespace

CoverageMap::CoverageMap(const Plan &plan)
    : m_coverage(coverageOf(plan.contents))
    , m_needLook(m_coverage.unreached())
{
    for (const PlannedContent &entry : plan.entries) {
        if (!entry.takesPart())
            m_needLook.append(entry.number);
        m_contentOrder.append(entry.number);
    }
    std::stable_partition(m_contentOrder.begin(), m_contentOrder.end(),
        [this](int number) { return needsLook(number); });
}

void CoverageMap::layOut(const QSizeF &size, const CoverageFont &font)
{
    const qreal em = font.lineHeight;
    const QRectF room = QRectF(QPointF(), size)
                            .adjusted(Padding * em, Padding * em, -Padding * em, -Padding * em);
    const qreal left = room.left() + font.labelWidth + Padding * em;
    m_unknownWidth = UnknownWidth * em;
    m_unknownLeft = room.right() - m_unknownWidth;
    const qreal bandsWidth = std::max(0.0, m_unknownLeft - Padding * em - left);
    m_axis = {left, room.top(), bandsWidth, AxisHeight * em};

    m_keyColumns = std::clamp(quotient(room.width(), KeyPartWidth * em), 1, 4);
    if (m_keyColumns == 3) // the fourth part would stand alone
        m_keyColumns = 2;
    m_keyLine = KeyLine * em;
    m_listColumns = std::max(1, quotient(room.width(), CellWidth * em));
    shareHeight(room.bottom() - m_axis.bottom(), em);
    m_bands = {left, m_axis.bottom(), bandsWidth, GenderCount * m_rowStep};
    m_key = {room.left(), m_bands.bottom() + Padding * em / 2, room.width(),
        m_keyLine * m_keyParts / m_keyColumns};

    m_items.clear();
    layOutBands();
    const qreal listTop = m_key.bottom() + Padding * em / 2;
    layOutContents(
        {room.left(), listTop, room.width(), std::max(0.0, room.bottom() - listTop)}, em);
}

void CoverageMap::shareHeight(qreal height, qreal lineHeight)
{
    const int listLines = (m_contentOrder.size() + m_listColumns - 1) / m_listColumns;
    const qreal notes = listLines * CellHeightWithNote * lineHeight;
    const qreal names = listLines * CellHeight * lineHeight;
    const qreal lowRows = GenderCount * (LowestRow + RowGap) * lineHeight;
    height -= Padding * lineHeight;

    // What is said elsewhere, too, goes first: the second lines of the list, then the key.
    const auto keyHeight = [this](int parts) { return parts * m_keyLine / m_keyColumns; };
    m_keyParts = m_keyColumns == 4 ? 8 : 4;
    m_hasNotes = lowRows + keyHeight(m_keyParts) + notes <= height;
    for (const int parts : {4, 0}) {
        if (lowRows + keyHeight(m_keyParts) + names > height)
            m_keyParts = std::min(m_keyParts, parts);
    }

    const qreal rows = height - keyHeight(m_keyParts) - (m_hasNotes ? notes : names);
    m_rowStep = std::clamp(rows / GenderCount, (SmallestRow + RowGap) * lineHeight,
        (HighestRow + RowGap) * lineHeight);
    m_rowHeight = m_rowStep - RowGap * lineHeight;
    m_labelHeight = m_rowHeight + 0.5 >= LowestRow * lineHeight ? LabelHeight * lineHeight : 0;
    m_markRadius = std::min(MarkRadius * lineHeight, (m_rowHeight - m_labelHeight) / 2);
}

void CoverageMap::layOutBands()
{
    for (int line = 0; line < m_coverage.genders.size(); ++line) {
        const GenderCoverage &row = m_coverage.genders.at(line);
        const QRectF rect = rowRect(line);
        CoverageItem item;
        item.line = line;
        item.gender = row.gender;
        const QVector<Band> bands = row.bands();
        for (const Band &band : bands) {
            item.ages = band.ages;
            item.choice = band.choice;
            item.number = band.choice.number;
            item.rect = rect;
            item.rect.setLeft(xOf(band.ages.from));
            item.rect.setRight(xOf(band.ages.to + 1));
            m_items.append(item);
        }
        item.kind = CoverageItem::UnknownAge;
        item.ages = {};
        item.choice = row.unknownAge;
        item.number = row.unknownAge.number;
        item.rect = unknownAgeRect(line);
        m_items.append(item);
    }
}

void CoverageMap::layOutContents(const QRectF &room, qreal lineHeight)
{
    const int cells = m_contentOrder.size();
    const int columns = m_listColumns;
    const qreal gap = CellGap * lineHeight;
    const qreal width = (room.width() + gap) / columns;
    const qreal height = (m_hasNotes ? CellHeightWithNote : CellHeight) * lineHeight;
    // The half pixel keeps what was measured to fit.
    const int places = columns * quotient(room.height() + 0.5, height);
    const int shown = cells <= places ? cells : std::max(0, places - 1);
    const auto cell = [&](int place) {
        const int line = place / columns;
        const int column = place % columns;
        return QRectF(
            room.left() + column * width, room.top() + line * height, width - gap, height - gap);
    };
    for (int place = 0; place < shown; ++place) {
        CoverageItem item;
        item.kind = CoverageItem::Content;
        item.line = GenderCount + place / columns;
        item.number = m_contentOrder.at(place);
        item.rect = cell(place);
        m_items.append(item);
    }
    m_hiddenContents = cells - shown;
    m_more = m_hiddenContents > 0 && places > 0 ? cell(shown) : QRectF();
}

int CoverageMap::itemAt(const QPointF &point) const
{
    const auto it = std::find_if(m_items.cbegin(), m_items.cend(),
        [&point](const CoverageItem &item) { return item.rect.contains(point); });
    return it == m_items.cend() ? -1 : static_cast<int>(std::distance(m_items.cbegin(), it));
}

int CoverageMap::neighbour(int item, Direction direction) const
{
    if (m_items.isEmpty())
        return -1;
    if (item < 0 || item >= m_items.size())
        return 0;
    const int line = m_items.at(item).line;
    const auto isIn = [this](int position, int wanted) {
        return position >= 0 && position < m_items.size() && m_items.at(position).line == wanted;
    };
    if (direction == Left || direction == Right) {
        const int next = direction == Left ? item - 1 : item + 1;
        return isIn(next, line) ? next : item;
    }
    if (direction == First || direction == Last) {
        const int step = direction == First ? -1 : 1;
        while (isIn(item + step, line))
            item += step;
        return item;
    }

    const int wanted = direction == Up ? line - 1 : line + 1;
    const qreal x = m_items.at(item).rect.center().x();
    const auto distance = [x](const QRectF &rect) {
        return std::max({rect.left() - x, x - rect.right(), 0.0});
    };
    int nearest = item;
    for (int i = 0; i < m_items.size(); ++i) {
        const bool isFirst = nearest == item;
        if (isIn(i, wanted)
            && (isFirst || distance(m_items.at(i).rect) < distance(m_items.at(nearest).rect)))
            nearest = i;
    }
    return nearest;
}

QVector<CoverageMark> CoverageMap::marks(const Decision &decision) const
{
    QVector<CoverageMark> marks;
    if (m_markRadius <= 0)
        return marks;
    marks.reserve(decision.faces.size());
    for (int i = 0; i < decision.faces.size(); ++i) {
        const PluginKrHvcP2::FaceEvaluation &face = decision.faces.at(i).evaluation;
        const bool isAgeKnown = face.age >= 0;
        QRectF room = markRoom(static_cast<int>(coveredPosition(face.gender)), isAgeKnown);
        if (isAgeKnown) {
            const int age = std::clamp(face.age, LowestCoveredAge, HighestCoveredAge);
            room.moveLeft(xOf(age + 0.5));
            room.setWidth(0);
        }
        const QVector<QPointF> places = placesIn(room, m_markRadius);
        const auto free = std::find_if(places.cbegin(), places.cend(),
            [&](const QPointF &place) { return isFree(place, marks, 2 * m_markRadius - 0.5); });
        marks.append({i, free == places.cend() ? places.constFirst() : *free});
    }
    return marks;
}

int CoverageMap::faceAt(const QPointF &point, const QVector<CoverageMark> &marks) const
{
    const auto it = std::find_if(marks.cbegin(), marks.cend(), [&](const CoverageMark &mark) {
        return QLineF(point, mark.center).length() <= m_markRadius + PointerReach;
    });
    return it == marks.cend() ? -1 : it->face;
}

qreal CoverageMap::xOf(qreal age) const
{
    return m_bands.left() + (age - LowestCoveredAge) * m_bands.width() / CoveredAges;
}

QRectF CoverageMap::rowRect(int gender) const
{
    return {m_bands.left(), m_bands.top() + gender * m_rowStep, m_bands.width(), m_rowHeight};
}

QRectF CoverageMap::unknownAgeRect(int gender) const
{
    return {m_unknownLeft, m_bands.top() + gender * m_rowStep, m_unknownWidth, m_rowHeight};
}

QRectF CoverageMap::keyPartRect(int part) const
{
    const qreal width = m_key.width() / m_keyColumns;
    const int line = part / m_keyColumns;
    const int column = part % m_keyColumns;
    return {m_key.left() + column * width, m_key.top() + line * m_keyLine, width, m_keyLine};
}

QRectF CoverageMap::markRoom(int gender, bool isAgeKnown) const
{
    const QRectF rect = isAgeKnown ? rowRect(gender) : unknownAgeRect(gender);
    return rect.adjusted(0, m_labelHeight, 0, 0);
}

} // namespace Desk
