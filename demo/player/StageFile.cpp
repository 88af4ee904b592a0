#include "StageFile.h"

#include "ShownText.h"
#include "host/KrPluginKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QSaveFile>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace Player {

namespace {

namespace Keys = Kora::Keys;

const QString Title = QStringLiteral("title");
const QString Screen = QStringLiteral("screen");
const QString Screens = QStringLiteral("screens");
const QString Event = QStringLiteral("event");
const QString Params = QStringLiteral("params");
const QString Card = QStringLiteral("card");
const QString Subtitle = QStringLiteral("subtitle");
const QString Color = QStringLiteral("color");
const QString Picture = QStringLiteral("picture");
const QString Type = QStringLiteral("type");
const QString Direction = QStringLiteral("direction");
const QString Sequences = QStringLiteral("seq");
const QString TargetSequence = QStringLiteral("screenseq");

constexpr int LinkType = 2; // lowest type of an event between screens
constexpr int Incoming = 1;
constexpr int Outgoing = 0;

constexpr int MaxBytes = 16 * 1024 * 1024; // of a file
constexpr int MaxShown = 500; // characters of a text
constexpr int MaxEntries = 1000; // of a list that the player goes through

QString tr(const char *text)
{
    return QCoreApplication::translate("Player::StageFile", text);
}

std::optional<int> toInteger(const QJsonValue &value)
{
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (!(number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
        || std::floor(number) != number)
        return std::nullopt;
    return static_cast<int>(number);
}

QString inList(const QString &path, const QString &key, int position)
{
    return QStringLiteral("%1%2[%3]").arg(path, key, QString::number(position));
}

// The checks return "key: reason", or an empty text when there is nothing to object to.

QString complaint(const QString &key, const QString &reason)
{
    return key + QLatin1String(": ") + reason;
}

QString checkType(
    const QJsonObject &object, const QString &path, const QString &key, QJsonValue::Type type)
{
    const QJsonValue value = object.value(key);
    if (type == QJsonValue::Array && value.toArray().size() > MaxEntries)
        return complaint(path + key, tr("must not hold more than %1 entries").arg(MaxEntries));
    if (value.isUndefined() || value.type() == type)
        return {};
    switch (type) {
    case QJsonValue::Object:
        return complaint(path + key, tr("must be an object"));
    case QJsonValue::Array:
        return complaint(path + key, tr("must be a list"));
    default:
        return complaint(path + key, tr("must be a text"));
    }
}

QString checkCard(const QJsonObject &card, const QString &path)
{
    for (const QString &key : {Title, Subtitle, Color, Picture}) {
        QString error = checkType(card, path, key, QJsonValue::String);
        if (!error.isEmpty())
            return error;
    }
    const QString color = card.value(Color).toString();
    if (!color.isEmpty() && !QColor::isValidColor(color))
        return complaint(path + Color, tr("\"%1\" is not a colour").arg(color));
    return {};
}

QString checkContent(const QJsonValue &value, const QString &path)
{
    if (!value.isObject())
        return complaint(path, tr("must be an object"));
    const QJsonObject content = value.toObject();
    const QString inner = path + QLatin1Char('.');
    if (!content.contains(Params))
        return complaint(inner + Params, tr("is missing"));
    QString error = checkType(content, inner, Params, QJsonValue::Object);
    if (error.isEmpty())
        error = checkType(content, inner, Keys::Name, QJsonValue::String);
    if (error.isEmpty())
        error = checkType(content, inner, Card, QJsonValue::Object);
    if (error.isEmpty())
        error = checkCard(content.value(Card).toObject(), inner + Card + QLatin1Char('.'));
    return error;
}

QString checkScreen(const QJsonValue &value, const QString &path)
{
    if (!value.isObject())
        return complaint(path, tr("must be an object"));
    const QJsonObject screen = value.toObject();
    const QString inner = path + QLatin1Char('.');
    if (!screen.contains(Keys::Id))
        return complaint(inner + Keys::Id, tr("is missing"));
    if (!toInteger(screen.value(Keys::Id)))
        return complaint(inner + Keys::Id, tr("must be a whole number"));

    QString error = checkType(screen, inner, Keys::Name, QJsonValue::String);
    if (error.isEmpty())
        error = checkType(screen, inner, Keys::PluginData, QJsonValue::Object);
    if (error.isEmpty())
        error = checkType(screen, inner, Keys::Contents, QJsonValue::Array);
    if (error.isEmpty())
        error = checkType(screen, inner, Event, QJsonValue::Array);

    const QJsonArray contents = screen.value(Keys::Contents).toArray();
    for (int i = 0; i < contents.size() && error.isEmpty(); ++i)
        error = checkContent(contents.at(i), inList(inner, Keys::Contents, i));

    const QJsonArray events = screen.value(Event).toArray();
    for (int i = 0; i < events.size() && error.isEmpty(); ++i) {
        if (!events.at(i).isObject())
            error = complaint(inList(inner, Event, i), tr("must be an object"));
    }
    return error;
}

QString checkStage(const QJsonObject &stage)
{
    QString error = checkType(stage, QString(), Title, QJsonValue::String);
    if (!error.isEmpty())
        return error;
    if (!stage.contains(Screens))
        return complaint(Screens, tr("is missing"));
    error = checkType(stage, QString(), Screens, QJsonValue::Array);
    if (!error.isEmpty())
        return error;

    const QJsonArray screens = stage.value(Screens).toArray();
    if (screens.isEmpty())
        return complaint(Screens, tr("must hold at least one screen"));
    QMap<int, QString> owners;
    for (int i = 0; i < screens.size(); ++i) {
        const QString path = inList(QString(), Screens, i);
        error = checkScreen(screens.at(i), path);
        if (!error.isEmpty())
            return error;
        const int id = *toInteger(screens.at(i).toObject().value(Keys::Id));
        if (owners.contains(id)) {
            return complaint(path + QLatin1Char('.') + Keys::Id,
                tr("%1 already belongs to %2").arg(QString::number(id), owners.value(id)));
        }
        owners.insert(id, path);
    }

    if (stage.contains(Screen)) {
        const std::optional<int> id = toInteger(stage.value(Screen));
        if (!id)
            return complaint(Screen, tr("must be a whole number"));
        if (!owners.contains(*id))
            return complaint(Screen, tr("there is no screen %1").arg(*id));
    }
    return {};
}

QString describe(const QByteArray &json, const QJsonParseError &error)
{
    const QByteArray before = json.left(error.offset);
    const int line = before.count('\n') + 1;
    const int column = QString::fromUtf8(before.mid(before.lastIndexOf('\n') + 1)).size() + 1;
    return QStringLiteral("%1:%2: %3")
        .arg(QString::number(line), QString::number(column), error.errorString());
}

// Plug-ins read events through QVariant, so that a number may also be written as a text.
std::optional<int> toLooseInteger(const QJsonValue &value)
{
    bool ok = false;
    const int number = value.toVariant().toInt(&ok);
    return ok ? std::make_optional(number) : std::nullopt;
}

bool isOpening(const QJsonObject &event)
{
    return toLooseInteger(event.value(Direction)) == Incoming
        && toLooseInteger(event.value(Type)).value_or(0) >= LinkType;
}

bool lists(const QJsonObject &event, int number)
{
    const QJsonArray sequences = event.value(Sequences).toArray();
    return std::any_of(sequences.begin(), sequences.end(),
        [number](const QJsonValue &sequence) { return toLooseInteger(sequence) == number; });
}

/// @p events, changed such that one of them lists and opens sequence @p number. An event without a
/// list is not enough: it opens the first sequences, as many as the screen has valid contents.
QJsonArray opened(QJsonArray events, int number)
{
    int first = -1;
    for (int i = 0; i < events.size(); ++i) {
        const QJsonObject event = events.at(i).toObject();
        if (!isOpening(event) || event.value(Sequences).toArray().isEmpty())
            continue;
        if (lists(event, number))
            return events;
        if (first < 0)
            first = i;
    }
    if (first < 0) {
        events.append(
            QJsonObject{{Type, LinkType}, {Direction, Incoming}, {Sequences, QJsonArray{number}}});
        return events;
    }
    QJsonObject event = events.at(first).toObject();
    QJsonArray sequences = event.value(Sequences).toArray();
    sequences.append(number);
    event.insert(Sequences, sequences);
    events.replace(first, event);
    return events;
}

/// The sequence of the screen that the event links to; nothing when it is no such event.
std::optional<int> linkedSequence(const QJsonObject &event, int screenId)
{
    if (toLooseInteger(event.value(Keys::Id)) != screenId || !toLooseInteger(event.value(Type)))
        return std::nullopt;
    return toLooseInteger(event.value(TargetSequence));
}

QString shownText(const QJsonObject &object, const QString &key)
{
    return shortened(object.value(key).toString(), MaxShown);
}

QColor defaultColor(int number)
{
    static const std::array<QColor, 8> colors{QColor(0xc2, 0x41, 0x5c), QColor(0x2f, 0x6f, 0xb5),
        QColor(0xd0, 0x7a, 0x1f), QColor(0x2b, 0x8a, 0x5a), QColor(0x7a, 0x4f, 0xb0),
        QColor(0x1d, 0x8a, 0x99), QColor(0xa8, 0x3f, 0x8b), QColor(0x5d, 0x72, 0x2f)};
    return colors.at(static_cast<size_t>(number - 1) % colors.size());
}

} // namespace

std::optional<StageFile> StageFile::read(const QString &fileName, QString *error)
{
    const QFileInfo info(fileName);
    if (!info.exists()) {
        *error = complaint(fileName, tr("no such file"));
        return std::nullopt;
    }
    // A pipe of that name would block the open for ever.
    if (!info.isFile()) {
        *error = complaint(fileName, tr("is not a file"));
        return std::nullopt;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = complaint(fileName, file.errorString());
        return std::nullopt;
    }
    return fromJson(file.read(MaxBytes + 1), fileName, error);
}

std::optional<StageFile> StageFile::fromJson(
    const QByteArray &json, const QString &fileName, QString *error)
{
    if (json.size() > MaxBytes) {
        *error = complaint(fileName, tr("is larger than %1 MiB").arg(MaxBytes / (1024 * 1024)));
        return std::nullopt;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        *error = fileName + QLatin1Char(':') + describe(json, parseError);
        return std::nullopt;
    }
    if (!document.isObject()) {
        *error = complaint(fileName, tr("must hold an object"));
        return std::nullopt;
    }
    const QString objection = checkStage(document.object());
    if (!objection.isEmpty()) {
        *error = complaint(fileName, objection);
        return std::nullopt;
    }
    StageFile stage;
    stage.m_fileName = fileName;
    stage.m_document = document.object();
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
    if (!fromJson(json, fileName, error))
        return false;
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(json) == json.size() && file.commit()) {
        *this = saved;
        return true;
    }
    *error = complaint(fileName, file.errorString());
    return false;
}

QString StageFile::title() const
{
    const QString title = shownText(m_document, Title);
    return title.isEmpty() ? QFileInfo(m_fileName).completeBaseName() : title;
}

QList<int> StageFile::screenIds() const
{
    QList<int> ids;
    const QJsonArray screens = m_document.value(Screens).toArray();
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
    if (m_document.contains(Screen))
        return m_document.value(Screen).toInt();
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

QMap<int, QVariantMap> StageFile::screens() const
{
    QMap<int, QVariantMap> screens;
    const QJsonArray list = m_document.value(Screens).toArray();
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
    *error = checkContent(content, inList(QString(), Keys::Contents, index));
    if (!error->isEmpty())
        return false;

    const int number = index + 1;
    contents.append(content);
    screen.insert(Keys::Contents, contents);
    screen.insert(Event, opened(screen.value(Event).toArray(), number));
    replaceScreen(screenId, screen);
    link(screenId, number);
    return true;
}

QList<int> StageFile::linkingScreens(int screenId, int number) const
{
    QList<int> linking;
    const QList<int> ids = screenIds();
    for (const int id : ids) {
        const QJsonArray events = screen(id).value(Event).toArray();
        if (id != screenId
            && std::any_of(events.begin(), events.end(), [=](const QJsonValue &event) {
                   return linkedSequence(event.toObject(), screenId) == number;
               }))
            linking << id;
    }
    return linking;
}

QVector<StageContent> StageFile::contents(int screenId) const
{
    QVector<StageContent> contents;
    const QDir directory = QFileInfo(m_fileName).absoluteDir();
    const QJsonArray entries = screen(screenId).value(Keys::Contents).toArray();
    for (const QJsonValue &value : entries) {
        const QJsonObject entry = value.toObject();
        const QJsonObject card = entry.value(Card).toObject();
        StageContent content;
        content.number = contents.size() + 1;
        content.name = shownText(entry, Keys::Name);
        if (content.name.isEmpty())
            content.name = shownText(entry.value(Params).toObject(), Keys::Name);
        content.title = card.contains(Title) ? shownText(card, Title) : content.name;
        content.subtitle = shownText(card, Subtitle);
        content.color = QColor(card.value(Color).toString());
        if (!content.color.isValid())
            content.color = defaultColor(content.number);
        const QString picture = card.value(Picture).toString();
        if (!picture.isEmpty())
            content.picture = directory.absoluteFilePath(picture);
        contents << content;
    }
    return contents;
}

QJsonObject StageFile::screen(int screenId) const
{
    const QJsonArray screens = m_document.value(Screens).toArray();
    for (const QJsonValue &value : screens) {
        if (value.toObject().value(Keys::Id).toInt() == screenId)
            return value.toObject();
    }
    return {};
}

void StageFile::replaceScreen(int screenId, const QJsonObject &screen)
{
    QJsonArray screens = m_document.value(Screens).toArray();
    for (int i = 0; i < screens.size(); ++i) {
        if (screens.at(i).toObject().value(Keys::Id).toInt() == screenId)
            screens.replace(i, screen);
    }
    m_document.insert(Screens, screens);
}

/// Lets another screen link to sequence @p number, when none does, as it does to the one before.
void StageFile::link(int screenId, int number)
{
    if (!linkingScreens(screenId, number).isEmpty())
        return;
    QJsonObject event{{Type, LinkType}, {Direction, Outgoing}, {Sequences, QJsonArray()}};
    std::optional<int> linkingScreen;
    int nearest = 0;
    const QList<int> ids = screenIds();
    for (const int id : ids) {
        if (id == screenId)
            continue;
        if (!linkingScreen)
            linkingScreen = id;
        const QJsonArray events = screen(id).value(Event).toArray();
        for (const QJsonValue &value : events) {
            const QJsonObject model = value.toObject();
            const int sequence = linkedSequence(model, screenId).value_or(0);
            if (sequence <= nearest || sequence > number)
                continue;
            nearest = sequence;
            linkingScreen = id;
            for (const QString &key : {Type, Direction, Sequences})
                event.insert(key, model.value(key)); // an undefined value removes the key
        }
    }
    if (!linkingScreen)
        return; // the only screen

    event.insert(Keys::Id, screenId);
    event.insert(TargetSequence, number);
    QJsonObject screen = this->screen(*linkingScreen);
    QJsonArray events = screen.value(Event).toArray();
    events.append(event);
    screen.insert(Event, events);
    replaceScreen(*linkingScreen, screen);
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
            QJsonObject card = content.value(Card).toObject();
            const QString picture = card.value(Picture).toString();
            if (picture.isEmpty() || QDir::isAbsolutePath(picture))
                continue;
            card.insert(Picture, to.relativeFilePath(from.absoluteFilePath(picture)));
            content.insert(Card, card);
            contents.replace(i, content);
        }
        if (!contents.isEmpty())
            screen.insert(Keys::Contents, contents);
        replaceScreen(id, screen);
    }
}

} // namespace Player
