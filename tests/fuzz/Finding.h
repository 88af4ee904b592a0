#pragma once

#include <QDebug>
#include <QString>

/// How the targets say that something is wrong. It ends the program: libFuzzer then keeps the
/// input, and Qt Test names the file that was replayed.
namespace Fuzz {

inline void expect(bool holds, const char *what)
{
    if (!holds)
        qFatal("%s", what);
}

/// With types and all entries: some values of different types are the same to QVariant.
template <typename T>
QString described(const T &value)
{
    QString text;
    QDebug(&text).nospace() << value;
    return text;
}

/// Both sides go into the message.
template <typename T>
void expectSame(const T &ours, const T &expected, const char *what)
{
    if (!(ours == expected))
        qFatal("%s: %s\ninstead of %s", what, qUtf8Printable(described(ours)),
            qUtf8Printable(described(expected)));
}

} // namespace Fuzz
