#include "demo/support/JsonReader.h"

#include "demo/support/UserFile.h"

#include <QJsonDocument>
#include <QJsonParseError>

#include <cmath>
#include <limits>

namespace Demo {

namespace {

constexpr int MinInt = std::numeric_limits<int>::min();
constexpr int MaxInt = std::numeric_limits<int>::max();

constexpr double NoNumber = std::numeric_limits<double>::quiet_NaN();

bool isInteger(const QJsonValue &value, qint64 min, qint64 max)
{
    const double number = value.toDouble(NoNumber);
    return number >= static_cast<double>(min) && number <= static_cast<double>(max)
        && std::floor(number) == number;
}

} // namespace

JsonReader::JsonReader(const QJsonValue &value, const JsonPath &path, JsonProblem &problem)
    : m_object(value.toObject())
    , m_path(path)
    , m_problem(problem)
{
    if (!value.isObject())
        m_problem.set(m_path, tr("must be an object"));
}

void JsonReader::require(const QString &key)
{
    if (!contains(key))
        fail(key, tr("is missing"));
}

void JsonReader::fail(const QString &key, const QString &reason)
{
    m_problem.set(m_path.key(key), reason);
}

QJsonValue JsonReader::take(const QString &key)
{
    return m_object.take(key);
}

QString JsonReader::text(const QString &key)
{
    const QJsonValue value = take(key);
    if (!value.isUndefined() && !value.isString())
        fail(key, tr("must be a text"));
    return value.toString();
}

bool JsonReader::boolean(const QString &key, bool fallback)
{
    const QJsonValue value = take(key);
    if (!value.isUndefined() && !value.isBool())
        fail(key, tr("must be true or false"));
    return value.toBool(fallback);
}

int JsonReader::integer(const QString &key)
{
    const QJsonValue value = take(key);
    if (!value.isUndefined() && !isInteger(value, MinInt, MaxInt))
        fail(key, tr("must be a whole number"));
    return value.toInt();
}

int JsonReader::integer(const QString &key, int fallback, int min, int max)
{
    if (!contains(key))
        return fallback;
    return static_cast<int>(wholeNumber(take(key), m_path.key(key), min, max));
}

quint32 JsonReader::unsignedInteger(const QString &key, quint32 fallback)
{
    if (!contains(key))
        return fallback;
    return static_cast<quint32>(
        wholeNumber(take(key), m_path.key(key), 0, std::numeric_limits<quint32>::max()));
}

double JsonReader::number(const QString &key, double fallback, double max)
{
    if (!contains(key))
        return fallback;
    const double number = take(key).toDouble(NoNumber);
    if (number >= 0 && number <= max)
        return number;
    fail(key, tr("must be a number from 0 to %1").arg(max));
    return 0;
}

JsonReader JsonReader::object(const QString &key)
{
    const QJsonValue value = contains(key) ? take(key) : QJsonValue(QJsonObject());
    return {value, m_path.key(key), m_problem};
}

QVector<int> JsonReader::integers(const QString &key, int maxEntries, int min, int max)
{
    QVector<int> values;
    const QJsonArray entries = list(key, maxEntries);
    for (int i = 0; i < entries.size(); ++i) {
        const JsonPath path = m_path.key(key).element(i);
        values << static_cast<int>(wholeNumber(entries.at(i), path, min, max));
    }
    return values;
}

QStringList JsonReader::texts(const QString &key, int maxEntries)
{
    QStringList values;
    const QJsonArray entries = list(key, maxEntries);
    for (int i = 0; i < entries.size(); ++i) {
        if (!entries.at(i).isString())
            m_problem.set(m_path.key(key).element(i), tr("must be a text"));
        values << entries.at(i).toString();
    }
    return values;
}

void JsonReader::objects(
    const QString &key, int maxEntries, const std::function<void(JsonReader &)> &read)
{
    const QJsonArray entries = list(key, maxEntries);
    for (int i = 0; i < entries.size() && !m_problem.isSet(); ++i) {
        JsonReader reader(entries.at(i), m_path.key(key).element(i), m_problem);
        read(reader);
    }
}

void JsonReader::finish()
{
    if (!m_object.isEmpty())
        fail(m_object.begin().key(), tr("unknown key"));
}

QJsonArray JsonReader::list(const QString &key, int maxEntries)
{
    const QJsonValue value = take(key);
    if (!value.isUndefined() && !value.isArray())
        fail(key, tr("must be a list"));
    QJsonArray entries = value.toArray();
    if (entries.size() <= maxEntries)
        return entries;
    fail(key, tr("must not hold more than %1 entries").arg(maxEntries));
    return {};
}

qint64 JsonReader::wholeNumber(
    const QJsonValue &value, const JsonPath &path, qint64 min, qint64 max)
{
    if (isInteger(value, min, max))
        return static_cast<qint64>(value.toDouble());
    m_problem.set(path,
        tr("must be a whole number from %1 to %2").arg(QString::number(min), QString::number(max)));
    return min;
}

JsonProblem readJson(const QByteArray &json, const std::function<void(JsonReader &)> &read)
{
    JsonProblem problem;
    problem.reason = UserFile::sizeObjection(json.size(), MaxJsonMebibytes);
    if (problem.isSet())
        return problem;

    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        problem.reason = error.errorString();
        problem.placeAt(json, error.offset);
        return problem;
    }
    const QJsonValue root
        = document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    JsonReader reader(root, JsonPath(), problem);
    if (!problem.isSet())
        read(reader);
    if (problem.isSet())
        problem.placeAt(json, problem.path.offsetIn(json));
    return problem;
}

} // namespace Demo
