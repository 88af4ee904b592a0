#include "demo/stage/StageFile.h"

#include "demo/stage/StageKeys.h"
#include "demo/stage/StageLinks.h"
#include "demo/stage/StageReader.h"
#include "demo/stage/StageText.h"
#include "demo/support/JsonProblem.h"
#include "demo/support/JsonReader.h"
#include "demo/support/UserFile.h"
#include "host/KrPluginKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

namespace Stage {

using Demo::JsonProblem;

namespace Keys = Kora::Keys;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Stage::StageFile", text);
}

} // namespace

std::optional<StageFile> StageFile::read(const QString &fileName, QString *error)
{
    const std::optional<QByteArray> json
        = Demo::UserFile::read(fileName, Demo::MaxJsonMebibytes, error);
    return json ? fromJson(*json, fileName, error) : std::nullopt;
}

std::optional<StageFile> StageFile::fromJson(
    const QByteArray &json, const QString &fileName, QString *error)
{
    StageFile stage;
    const JsonProblem problem = StageReader::read(json, &stage.m_document);
    if (problem.isSet()) {
        *error = problem.message(fileName);
        return std::nullopt;
    }
    stage.m_fileName = fileName;
    return stage;
}

QByteArray StageFile::toJson() const
{
    return QJsonDocument(m_document).toJson();
}

bool StageFile::save(const QString &fileName, QString *error)
{
    StageFile saved = *this;
    saved.m_fileName = fileName;
    saved.movePictures(QFileInfo(m_fileName).absolutePath());

    // What a plug-in has put in must not make a file that cannot be read again.
    const QByteArray json = saved.toJson();
    QJsonObject document;
    JsonProblem problem = StageReader::read(json, &document);
    if (problem.isSet()) {
        problem.line = 0; // of a text that nobody sees
        *error = problem.message(fileName);
        return false;
    }
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(json) == json.size() && file.commit()) {
        *this = saved;
        return true;
    }
    *error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
    return false;
}

QString StageFile::title() const
{
    const QString title = shownText(m_document, StageKeys::Title);
    return title.isEmpty() ? QFileInfo(m_fileName).completeBaseName() : title;
}

QList<int> StageFile::screenIds() const
{
    QList<int> ids;
    const QJsonArray screens = screenList();
    for (const QJsonValue &value : screens)
        ids << value.toObject().value(Keys::Id).toInt();
    return ids;
}

bool StageFile::hasScreen(int screenId) const
{
    return screenIds().contains(screenId);
}

int StageFile::defaultScreenId() const
{
    if (m_document.contains(StageKeys::Screen))
        return m_document.value(StageKeys::Screen).toInt();
    const QList<int> ids = screenIds();
    for (const int id : ids) {
        if (!screen(id).value(Keys::Contents).toArray().isEmpty())
            return id;
    }
    return ids.value(0);
}

QString StageFile::screenName(int screenId) const
{
    return shownText(screen(screenId), Keys::Name);
}

IdleSequence StageFile::idleSequence(int screenId) const
{
    const QJsonObject idle = screen(screenId).value(StageKeys::Idle).toObject();
    return {idle.value(StageKeys::Sequence).toInt(),
        idle.value(StageKeys::After).toInt(IdleSequence::DefaultAfter)};
}

QMap<int, QVariantMap> StageFile::screens() const
{
    QMap<int, QVariantMap> screens;
    const QJsonArray list = screenList();
    for (const QJsonValue &value : list) {
        const QJsonObject screen = value.toObject();
        screens.insert(screen.value(Keys::Id).toInt(), screen.toVariantMap());
    }
    return screens;
}

QVariantMap StageFile::screenParameters(int screenId) const
{
    const QVariantMap screen = this->screen(screenId).toVariantMap();
    QVariantMap parameters;
    for (const QString &key : {Keys::Id, Keys::PluginData, Keys::Contents}) {
        if (screen.contains(key))
            parameters.insert(key, screen.value(key));
    }
    return parameters;
}

void StageFile::setScreenParameters(int screenId, const QVariantMap &parameters)
{
    QJsonObject screen = this->screen(screenId);
    for (auto it = parameters.cbegin(); it != parameters.cend(); ++it) {
        if (it.key() != Keys::Id)
            screen.insert(it.key(), QJsonValue::fromVariant(it.value()));
    }
    replaceScreen(screenId, screen);
}

bool StageFile::addContent(int screenId, int index, const QVariant &entry, QString *error)
{
    if (!hasScreen(screenId)) {
        *error = tr("there is no screen %1").arg(screenId);
        return false;
    }
    QJsonObject screen = this->screen(screenId);
    QJsonArray contents = screen.value(Keys::Contents).toArray();
    if (index != contents.size()) {
        // Its number is its position, and events go by that number.
        *error = tr("the next content is #%1").arg(contents.size() + 1);
        return false;
    }
    const QJsonValue content = QJsonValue::fromVariant(entry);
    const JsonProblem problem = StageReader::checkContent(content, index);
    if (problem.isSet()) {
        *error = problem.text();
        return false;
    }
    const int number = index + 1;
    contents.append(content);
    screen.insert(Keys::Contents, contents);
    screen.insert(
        StageKeys::Event, StageLinks::opened(screen.value(StageKeys::Event).toArray(), number));
    replaceScreen(screenId, screen);
    m_document.insert(StageKeys::Screens, StageLinks::linked(screenList(), screenId, number));
    return true;
}

QList<int> StageFile::linkingScreens(int screenId, int number) const
{
    return StageLinks::linkingScreens(screenList(), screenId, number);
}

QJsonArray StageFile::contents(int screenId) const
{
    return screen(screenId).value(Keys::Contents).toArray();
}

QJsonArray StageFile::screenList() const
{
    return m_document.value(StageKeys::Screens).toArray();
}

QJsonObject StageFile::screen(int screenId) const
{
    const QJsonArray screens = screenList();
    for (const QJsonValue &value : screens) {
        if (value.toObject().value(Keys::Id).toInt() == screenId)
            return value.toObject();
    }
    return {};
}

void StageFile::replaceScreen(int screenId, const QJsonObject &screen)
{
    QJsonArray screens = screenList();
    for (int i = 0; i < screens.size(); ++i) {
        if (screens.at(i).toObject().value(Keys::Id).toInt() == screenId)
            screens.replace(i, screen);
    }
    m_document.insert(StageKeys::Screens, screens);
}

/// Makes relative pictures, which stood for files from @p directory on, fit the file's place.
void StageFile::movePictures(const QString &directory)
{
    const QDir from(directory);
    const QDir to = QFileInfo(m_fileName).absoluteDir();
    if (from == to)
        return;
    const QList<int> ids = screenIds();
    for (const int id : ids) {
        QJsonObject screen = this->screen(id);
        QJsonArray contents = screen.value(Keys::Contents).toArray();
        for (int i = 0; i < contents.size(); ++i) {
            QJsonObject content = contents.at(i).toObject();
            QJsonObject card = content.value(StageKeys::Card).toObject();
            const QString picture = card.value(StageKeys::Picture).toString();
            if (picture.isEmpty() || QDir::isAbsolutePath(picture))
                continue;
            card.insert(StageKeys::Picture, to.relativeFilePath(from.absoluteFilePath(picture)));
            content.insert(StageKeys::Card, card);
            contents.replace(i, content);
        }
        if (!contents.isEmpty())
            screen.insert(Keys::Contents, contents);
        replaceScreen(id, screen);
    }
}

} // namespace Stage
