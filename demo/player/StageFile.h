#pragma once

#include <QByteArray>
#include <QColor>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariantMap>
#include <QVector>

#include <optional>

namespace Player {

/// What the stage shows for one sequence.
struct StageContent
{
    int number = 0; // counted from 1; 0: the card shown while nothing plays
    QString name; // the entry's own name, else the one in its "params"
    QString title; // the name when the card has no title
    QString subtitle;
    QColor color; // always valid
    QString picture; // absolute path, empty when there is none
};

/// A stage: its screens with settings, contents and events, as the JSON file has them.
///
/// Holds the file's whole object, so that what the player does not know is written back as it was.
/// Only the structure is checked; ages, genders and settings are for the plug-in to judge.
class StageFile
{
public:
    /// Nothing, and "file:line:column: reason" or "file: key: reason" in @p error, when the file
    /// cannot be read or is not a stage.
    static std::optional<StageFile> read(const QString &fileName, QString *error);
    static std::optional<StageFile> fromJson(
        const QByteArray &json, const QString &fileName, QString *error);

    QByteArray toJson() const;

    QString fileName() const { return m_fileName; }
    QString title() const; ///< the file's base name when the stage has no title

    QList<int> screenIds() const; ///< in the order of the file, never empty
    bool hasScreen(int screenId) const;
    /// The stage's "screen"; else the first screen with contents; else the first one.
    int defaultScreenId() const;
    QString screenName(int screenId) const;

    QMap<int, QVariantMap> screens() const; ///< every screen as a plug-in is told about it

    /// The parameter map of a screen: "id", "plugindata" and "contents".
    QVariantMap screenParameters(int screenId) const;
    /// Replaces the keys that @p parameters holds, but the id. The only way to change a stage.
    void setScreenParameters(int screenId, const QVariantMap &parameters);

    QVector<StageContent> contents(int screenId) const; ///< at position p: sequence p + 1

private:
    QJsonObject screen(int screenId) const;

    QString m_fileName;
    QJsonObject m_document;
};

} // namespace Player
