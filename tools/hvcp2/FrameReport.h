#pragma once

#include "tools/analysis/Plan.h"
#include "tools/hvcp2/FrameChoice.h"
#include "tools/hvcp2/Paint.h"

#include <QJsonObject>
#include <QString>

namespace Hvcp2 {

QString reasonKey(PluginKrHvcP2::ContentReason reason); ///< "later-than-first-fit", for programs

/// What the plug-in makes of the frame that @p choice has found, and why.
QString frameText(const Analysis::Plan &plan, const FrameChoice &choice, const Paint &paint);
QJsonObject frameJson(const Analysis::Plan &plan, const FrameChoice &choice);

} // namespace Hvcp2
