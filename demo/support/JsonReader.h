#pragma once

#include "demo/support/JsonPath.h"
#include "demo/support/JsonProblem.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

namespace Demo {

/// Takes the values of one JSON object key by key and puts the first thing that is wrong into a
/// JsonProblem. Each function returns a value of its kind even then.
class JsonReader
{
    Q_DECLARE_TR_FUNCTIONS(Demo::JsonReader)

public:
    /// @p value, which stands at @p path, has to be an object. @p problem has to outlive this.
    JsonReader(const QJsonValue &value, const JsonPath &path, JsonProblem &problem);

    bool contains(const QString &key) const { return m_object.contains(key); }
    QJsonObject values() const { return m_object; } ///< what has not been taken yet

    void require(const QString &key); ///< the key has to be there
    void fail(const QString &key, const QString &reason);

    QJsonValue take(const QString &key); ///< a value of any kind; undefined when there is none
    QString text(const QString &key); ///< empty when there is none
    bool boolean(const QString &key, bool fallback);
    int integer(const QString &key); ///< 0 when there is none
    int integer(const QString &key, int fallback, int min, int max);
    quint32 unsignedInteger(const QString &key, quint32 fallback);
    double number(const QString &key, double fallback, double max); ///< from 0 to @p max
    JsonReader object(const QString &key); ///< of an empty object when there is none

    // Lists hold @p maxEntries at most, and are empty when there is none.
    QVector<int> integers(const QString &key, int maxEntries, int min, int max);
    QStringList texts(const QString &key, int maxEntries);

    /// Hands the objects of a list to @p read, one by one, until something is wrong.
    void objects(const QString &key, int maxEntries, const std::function<void(JsonReader &)> &read);

    /// Call it when every known key has been taken: any other is refused.
    void finish();

private:
    QJsonArray list(const QString &key, int maxEntries);
    qint64 wholeNumber(const QJsonValue &value, const JsonPath &path, qint64 min, qint64 max);

    QJsonObject m_object;
    JsonPath m_path;
    JsonProblem &m_problem;
};

/// JSON texts are not larger than this.
constexpr int MaxJsonMebibytes = 16;

/// Parses @p json, whose outermost value has to be an object, and hands it to @p read. What is
/// wrong first is returned, with line and column.
JsonProblem readJson(const QByteArray &json, const std::function<void(JsonReader &)> &read);

} // namespace Demo
