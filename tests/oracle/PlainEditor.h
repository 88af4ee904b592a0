#pragma once

#include "core/screen/ContentEntry.h"
#include "gui/AudienceRules.h"

#include <QString>
#include <QVariant>
#include <QVector>

#include <optional>

/// What the editor of one content reads, proposes, refuses and stores, rule by rule.
namespace Oracle {

/// As audienceForEditing().
PluginKrHvcP2::Audience audience(const QVariant &entry);

/// As contentRanges().
QVector<PluginKrHvcP2::Audience> contentRanges(const QVariantList &contents);

/// As freeRanges().
QVector<PluginKrHvcP2::Audience> freeRanges(const QVector<PluginKrHvcP2::Audience> &contents);

/// As nextRange().
std::optional<PluginKrHvcP2::Audience> nextRange(
    const PluginKrHvcP2::Audience &current, const QVector<PluginKrHvcP2::Audience> &freeRanges);

/// As findRefusal().
PluginKrHvcP2::Refusal refusal(
    const QString &name, const PluginKrHvcP2::Audience &entered, const QVariantList &others);

/// What becomes of an entry.
struct Edit
{
    QVariantMap entry;
    bool changed = false;
};

Edit edit(const QVariantMap &entry, const QString &name, const PluginKrHvcP2::Audience &entered);

} // namespace Oracle
