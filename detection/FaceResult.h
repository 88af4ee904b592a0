#pragma once

#include <QDateTime>
#include <QVariant>
#include <QVector>

namespace PluginKrHvcP2 {

/// One measured quantity of a face and how sure the sensor was of it.
struct FaceResultItem
{
    enum Kind { None = 0, Detection = 1, Direction = 2, Age = 3, Gender = 4 };

    int kind = None;
    /// Detection: map of "X", "Y", "Size". Direction: map of "LR", "UD", "Roll" (those measured)
    /// and "DirectionValue". Age: int, years. Gender: int, a Gender code.
    QVariant value;
    int confidence = 0; ///< the sensor's own measure, usually 0 to 1000
    bool marked = false; ///< the line of an age or gender held a '*'

    bool isValid() const { return kind != None && value.isValid() && !value.isNull(); }
};

/// One face of one frame. Holds at most one item of each kind; a second one replaces the first.
class FaceResult
{
public:
    int index = -1; ///< -1 until the sensor has numbered the face
    QDateTime time; ///< null until the face is complete

    void setItem(const FaceResultItem &item); ///< ignores an invalid item
    FaceResultItem item(int kind) const; ///< of kind None when there is no such item
    bool hasItems() const { return !m_items.isEmpty(); }
    void reset();

    int size() const; ///< of the face in the picture; 0 when unknown
    int directionValue() const; ///< 0: looks straight at the sensor; the largest int when unknown

private:
    QVector<FaceResultItem> m_items;
};

/// |@p leftRight| + |@p upDown|, at most the largest int.
int directionValue(int leftRight, int upDown);

/// Stands for a direction that was not measured.
constexpr int UnknownDirectionValue = 2147483647;

} // namespace PluginKrHvcP2
