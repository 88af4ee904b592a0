#pragma once

#include "core/screen/DetectionContent.h"
#include "core/screen/ScreenSettings.h"
#include "demo/stage/StageColor.h"
#include "demo/support/JsonProblem.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace Stage {
class StageFile;
} // namespace Stage

namespace Analysis {

/// One entry of the screen's contents.
struct PlannedContent
{
    int number = 0; ///< of the sequence, counted from 1
    QString name;
    Stage::StageColor color; ///< of its card
    /// As the detection reads it, valid or not. Linking screens are known of those that take part.
    PluginKrHvcP2::DetectionContent content;
    PluginKrHvcP2::EntryReason reason = PluginKrHvcP2::EntryReason::TakesPart;
    Demo::JsonProblem problem; ///< the reason in words and its place in the file; not set without

    bool takesPart() const { return reason == PluginKrHvcP2::EntryReason::TakesPart; }
};

/// What one screen of a stage file has the plug-in do.
struct Plan
{
    QString fileName;
    QString title; ///< of the stage
    int screenId = 0;
    QString screenName; ///< may be empty
    PluginKrHvcP2::ScreenSettings settings;
    QVector<PlannedContent> entries; ///< at position p: sequence p + 1
    PluginKrHvcP2::DetectionContents contents; ///< those that take part, as the plug-in knows them

    bool takesPartEntirely() const { return contents.size() == entries.size(); }
    QString name(int number) const; ///< of content @p number; empty when there is none
};

/// The plan of screen @p screenId, without one of the screen that the stage plays. Nothing, and
/// "file:line:column: key: reason" in @p error, when there is none.
std::optional<Plan> readPlan(const QString &fileName, std::optional<int> screenId, QString *error);

/// The same for @p json, the text of the file.
std::optional<Plan> planFromJson(
    const QByteArray &json, const QString &fileName, std::optional<int> screenId, QString *error);

/// The plan of screen @p screenId of a @p stage as it is now, saved or not. The problems of its
/// entries have no place in a file. Without that screen it is empty.
Plan planOf(const Stage::StageFile &stage, int screenId);

/// Takes @p assignment over, for example "concurrent=2". False with the reason in @p error for a
/// key that is no setting and for a value that the plug-in would not take from a host.
bool assignSetting(
    const QString &assignment, PluginKrHvcP2::ScreenSettings *settings, QString *error);

} // namespace Analysis
