#pragma once

#include "demo/stage/IdleSequence.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace Stage {

/// A stage: its screens with settings, contents and events, as the JSON file has them.
///
/// Holds the file's whole object, so that what the programs do not know is written back as it was.
/// Only the structure is checked; ages, genders and settings are for the plug-in to judge.
class StageFile
{
public:
    /// Nothing, and "file:line:column: key: reason" in @p error, when the file cannot be read or is
    /// not a stage.
    static std::optional<StageFile> read(const QString &fileName, QString *error);
    static std::optional<StageFile> fromJson(
        const QByteArray &json, const QString &fileName, QString *error);

    QByteArray toJson() const;

    /// Writes the stage and makes @p fileName its own; pictures are still found from there. False
    /// with the reason in @p error, and nothing changed, when that fails.
    bool save(const QString &fileName, QString *error);

    QString fileName() const { return m_fileName; }
    QString title() const; ///< as it is shown; the file's base name when the stage has no title

    QList<int> screenIds() const; ///< in the order of the file, never empty
    bool hasScreen(int screenId) const;
    /// The stage's "screen"; else the first screen with contents; else the first one.
    int defaultScreenId() const;
    QString screenName(int screenId) const; ///< likewise
    IdleSequence idleSequence(int screenId) const; ///< that there is such a sequence is not checked

    QMap<int, QVariantMap> screens() const; ///< every screen as a plug-in is told about it

    /// The parameter map of a screen: "id", "plugindata" and "contents".
    QVariantMap screenParameters(int screenId) const;
    /// Replaces the keys that @p parameters holds, but the id.
    void setScreenParameters(int screenId, const QVariantMap &parameters);

    /// Adds sequence @p index + 1, which must be the next one, with the events that it needs to
    /// take part. False with the reason in @p error when it does not fit.
    bool addContent(int screenId, int index, const QVariant &entry, QString *error);
    /// The other screens with an event for sequence @p number of the screen, in the file's order.
    QList<int> linkingScreens(int screenId, int number) const;

    QJsonArray contents(int screenId) const; ///< at position p: sequence p + 1

private:
    QJsonArray screenList() const;
    QJsonObject screen(int screenId) const;
    void replaceScreen(int screenId, const QJsonObject &screen);
    void movePictures(const QString &directory);

    QString m_fileName;
    QJsonObject m_document;
};

} // namespace Stage
