#pragma once

#include <QDateTime>
#include <QVariant>

#include <optional>

namespace PluginKrHvcP2 {

/// Stands for a direction that was not measured.
constexpr int UnknownDirectionValue = 2147483647;

/// |@p leftRight| + |@p upDown|, at most the largest int.
int directionValue(int leftRight, int upDown);

/// Where a face lies in the sensor's picture, in its pixels.
struct FaceBox
{
    int x = 0; ///< of the centre
    int y = 0; ///< of the centre
    int size = 0; ///< edge of the square around the face
};

/// Which way a face looks, in degrees, as far as it was measured.
struct FaceAngles
{
    std::optional<int> leftRight;
    std::optional<int> upDown;
    std::optional<int> roll;
    int directionValue = UnknownDirectionValue; ///< 0: looks straight at the sensor
};

/// A quantity of a face and how sure the sensor was of it.
template <typename T>
struct Measured
{
    T value{};
    int confidence = 0; ///< the sensor's own measure, usually 0 to 1000
    bool marked = false; ///< the line of an age or gender held a '*'
};

/// A quantity of any kind, for those that do not know which.
struct FaceResultItem
{
    enum Kind { None = 0, Detection = 1, Direction = 2, Age = 3, Gender = 4 };

    int kind = None;
    /// Detection: map of "X", "Y", "Size". Direction: map of "LR", "UD", "Roll" (those measured)
    /// and "DirectionValue". Age: int, years. Gender: int, a Gender code.
    QVariant value;
    int confidence = 0;
    bool marked = false;

    bool isValid() const { return kind != None && value.isValid() && !value.isNull(); }
};

/// One face of one frame: what was measured of it, each quantity once at most.
class FaceResult
{
public:
    int index = -1; ///< -1 until the sensor has numbered the face
    QDateTime time; ///< null until the face is complete
    std::optional<Measured<FaceBox>> box;
    std::optional<Measured<FaceAngles>> angles;
    std::optional<Measured<int>> age; ///< years
    std::optional<Measured<int>> gender; ///< a Gender code

    /// Takes the quantity of that kind over, an entry of a map that is missing as 0 or not
    /// measured; ignores an invalid item.
    void setItem(const FaceResultItem &item);
    FaceResultItem item(int kind) const; ///< of kind None when there is no such quantity
    bool hasItems() const { return box || angles || age || gender; }
    void reset();

    int size() const { return box ? box->value.size : 0; } ///< 0 when unknown
    int directionValue() const
    {
        return angles ? angles->value.directionValue : UnknownDirectionValue;
    }
};

} // namespace PluginKrHvcP2
