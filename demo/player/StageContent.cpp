#include "demo/player/StageContent.h"

#include "demo/stage/StageColor.h"
#include "demo/stage/StageFile.h"
#include "demo/stage/StageKeys.h"
#include "demo/stage/StageReader.h"
#include "demo/stage/StageText.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

namespace Player {

using namespace Stage;

namespace {

/// What @p entry says of sequence @p number. Pictures are found from @p directory on.
StageContent stageContent(const QJsonObject &entry, int number, const QDir &directory)
{
    const QJsonObject card = entry.value(StageKeys::Card).toObject();
    StageContent content;
    content.number = number;
    content.name = contentName(entry);
    content.title
        = card.contains(StageKeys::Title) ? shownText(card, StageKeys::Title) : content.name;
    content.subtitle = shownText(card, StageKeys::Subtitle);
    const StageColor color = contentColor(entry, number);
    content.color = QColor(color.red, color.green, color.blue, color.alpha);
    content.duration
        = qRound64(card.value(StageKeys::Duration).toDouble(StageReader::DefaultDuration) * 1000);
    const QString picture = card.value(StageKeys::Picture).toString();
    if (!picture.isEmpty())
        content.picture = directory.absoluteFilePath(picture);
    return content;
}

} // namespace

QVector<StageContent> stageContents(const StageFile &stage, int screenId)
{
    QVector<StageContent> contents;
    const QDir directory = QFileInfo(stage.fileName()).absoluteDir();
    const QJsonArray entries = stage.contents(screenId);
    for (const QJsonValue &entry : entries)
        contents << stageContent(entry.toObject(), contents.size() + 1, directory);
    return contents;
}

} // namespace Player
