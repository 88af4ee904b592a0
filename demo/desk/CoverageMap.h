#pragma once

#include "tools/analysis/Coverage.h"
#include "tools/analysis/Decider.h"
#include "tools/analysis/Plan.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QVector>

namespace Desk {

/// One part of the map that can be pointed at.
struct CoverageItem
{
    enum Kind {
        Ages, ///< neighbouring ages of one gender that get the same
        UnknownAge, ///< viewers of one gender whose age was not measured
        Content, ///< an entry of the list below the map
    };

    Kind kind = Ages;
    int line = 0; ///< from top to bottom; items of a line lie beside each other
    PluginKrHvcP2::Gender gender = PluginKrHvcP2::UnknownGender; ///< but of a Content
    Analysis::AgeRange ages; ///< of Ages
    Analysis::Choice choice; ///< but of a Content
    int number = 0; ///< of the content, counted from 1; 0: nothing fits
    QRectF rect;
};

/// Where a face of a frame stands in the map.
struct CoverageMark
{
    int face = 0; ///< position in the decision
    QPointF center;
};

/// The lengths that a picture's font gives, in pixels.
struct CoverageFont
{
    qreal lineHeight = 16;
    qreal labelWidth = 64; ///< of the longest name of a gender
};

/// Who gets which content, as rectangles of a picture: a line of bands by rising age for each
/// gender, and below them a list of all contents, those that need a look first.
class CoverageMap
{
public:
    enum Direction { Left, Right, Up, Down, First, Last };

    CoverageMap() = default;
    explicit CoverageMap(const Analysis::Plan &plan);

    void layOut(const QSizeF &size, const CoverageFont &font);

    const Analysis::Coverage &coverage() const { return m_coverage; }
    const QVector<CoverageItem> &items() const { return m_items; }
    int itemAt(const QPointF &point) const; ///< -1: none
    /// The item that @p direction leads to from @p item; the first one from none (-1), @p item
    /// itself where the map ends. -1 in an empty map.
    int neighbour(int item, Direction direction) const;

    /// In the order of the decision. Faces of a gender and an age stand beside or above each other,
    /// as long as there is room.
    QVector<CoverageMark> marks(const Analysis::Decision &decision) const;
    qreal markRadius() const { return m_markRadius; }
    /// The face whose mark is at @p point, as its position in the decision; -1: none.
    int faceAt(const QPointF &point, const QVector<CoverageMark> &marks) const;

    qreal xOf(qreal age) const; ///< of an age in years, for which there may be no band
    QRectF axisRect() const { return m_axis; } ///< of the numbers above the bands
    QRectF rowRect(int gender) const; ///< of a line's bands, by position in CoveredGenders
    QRectF unknownAgeRect(int gender) const; ///< likewise, of the field beside them
    qreal labelHeight() const { return m_labelHeight; } ///< at the top of each row; 0: no room
    QRectF keyRect() const { return m_key; } ///< for the meaning of patterns and marks
    /// Of its four patterns and four marks those for which there is room: all, the patterns, none.
    int keyParts() const { return m_keyParts; }
    QRectF keyPartRect(int part) const;
    bool hasNotes() const { return m_hasNotes; } ///< the list has a second line for each content
    QRectF moreRect() const { return m_more; } ///< null: the list has room for all contents
    int hiddenContents() const { return m_hiddenContents; } ///< for which there is no room

    /// Whether content @p number reaches nobody, or takes no part at all.
    bool needsLook(int number) const { return m_needLook.contains(number); }

private:
    /// Shares @p height among key, bands and list, all lengths in pixels.
    void shareHeight(qreal height, qreal lineHeight);
    void layOutBands();
    void layOutContents(const QRectF &room, qreal lineHeight);
    QRectF markRoom(int gender, bool isAgeKnown) const;

    Analysis::Coverage m_coverage;
    QVector<int> m_contentOrder; // numbers, as the list shows them
    QVector<int> m_needLook; // numbers
    QVector<CoverageItem> m_items;
    QRectF m_axis;
    QRectF m_bands; // of all genders
    qreal m_unknownLeft = 0;
    qreal m_unknownWidth = 0;
    qreal m_rowHeight = 0;
    qreal m_rowStep = 0;
    qreal m_labelHeight = 0; // at the top of a row
    qreal m_markRadius = 0;
    QRectF m_key;
    int m_keyColumns = 4;
    int m_keyParts = 0;
    qreal m_keyLine = 0; // height
    int m_listColumns = 1;
    bool m_hasNotes = false;
    QRectF m_more;
    int m_hiddenContents = 0;
};

} // namespace Desk
