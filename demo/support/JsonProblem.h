#pragma once

#include "demo/support/JsonPath.h"

#include <QByteArray>
#include <QString>

namespace Demo {

/// Why a JSON text is refused, and where in it.
struct JsonProblem
{
    JsonPath path; ///< empty: the whole text
    QString reason; ///< empty: nothing is wrong
    int line = 0; ///< counted from 1; 0: no place is known
    int column = 0; ///< in characters, counted from 1; 0 likewise

    bool isSet() const { return !reason.isEmpty(); }

    /// Takes what is wrong with the value at @p where, unless something has been wrong before: what
    /// follows may be its consequence.
    void set(const JsonPath &where, const QString &why);

    /// Sets line and column to those of @p offset in @p json.
    void placeAt(const QByteArray &json, int offset);

    /// "key: reason"; the reason alone for the whole text.
    QString text() const;

    /// "file:line:column: key: reason", less what is not known.
    QString message(const QString &fileName) const;
};

} // namespace Demo
