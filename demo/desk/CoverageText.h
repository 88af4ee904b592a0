#pragma once

#include "demo/desk/CoverageMap.h"

#include <QString>
#include <QStringList>

/// What the coverage says in words.
namespace Desk {

QString genderName(int gender); ///< "Female", "Male", "Unknown"
QString fitText(Analysis::Choice::Fit fit); ///< as the key of the map has it

/// Below the name of content @p number: whom it is for or, when it needs a look, why.
QString contentNote(const Analysis::Plan &plan, const Analysis::Coverage &coverage, int number);

/// What @p item stands for, a line each: the viewers or content, what they get or it reaches, why.
QStringList itemLines(
    const Analysis::Plan &plan, const Analysis::Coverage &coverage, const CoverageItem &item);

/// Who the face is and what became of it.
QStringList faceLines(const Analysis::Plan &plan, const Analysis::DecidedFace &face);

} // namespace Desk
