#pragma once

#include "core/screen/DetectionContent.h"
#include "core/screen/ScreenSettings.h"

#include <QMap>
#include <QVariantMap>

#include <optional>

/// How a screen's parameter map is read and edited, rule by rule.
namespace Oracle {

PluginKrHvcP2::DetectionTable detectionTable(
    const QVariantMap &screen, const QMap<int, QVariantMap> &stageScreens);

/// The settings of a map that an edit has left.
PluginKrHvcP2::ScreenSettings storedSettings(const QVariantMap &stored);

/// @p settings after the host has set @p params.
PluginKrHvcP2::ScreenSettings updated(
    PluginKrHvcP2::ScreenSettings settings, const QVariantMap &params);

/// What the dialog makes of @p stored; nothing without a change.
std::optional<QVariantMap> edited(
    const QVariantMap &stored, const PluginKrHvcP2::ScreenSettings &entered);

} // namespace Oracle
