#pragma once

#include "detection/Determination.h"

#include <QVector>

namespace PluginKrHvcP2 {

/// What became of one content when a face was matched with the list of them.
enum class ContentReason {
    FullFit, ///< taken: the first that fits gender and age
    DefaultFit, ///< taken: the last default of the gender; none fits the age as well
    AgeFit, ///< taken: the last that fits the age; none is for the gender
    BehindFullFit, ///< not looked at: an earlier content fits gender and age
    BeforeFullFit, ///< a default or of the age, but a later content fits gender and age
    NotLastDefault, ///< a default of the gender, but a later one is taken
    BelowDefault, ///< fits the age alone; a default of the gender goes first
    NotLastAgeFit, ///< fits the age alone, but so does a later one, which is taken
    OtherAge, ///< for the gender, but another age, and no default
    OtherGender, ///< for another gender and another age
};

/// Why a face gets the content that it gets.
struct FaceEvaluation
{
    int age = -1; ///< years; -1: not measured
    int gender = UnknownGender; ///< a Gender code
    bool ageMarked = false; ///< the sensor has settled on it
    bool genderMarked = false; ///< the sensor has settled on it
    ContentMatch match; ///< what matchContent() answers
    QVector<ContentReason> reasons; ///< one for each content, in the order of the list
};

/// Explains matchContent() for @p face.
FaceEvaluation evaluateFace(const FaceResult &face, const DetectionContents &contents);

} // namespace PluginKrHvcP2
