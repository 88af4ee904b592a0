#pragma once

#include <QByteArray>
#include <QString>

namespace KrTest {

/// Replaces what is there. False when not all of @p content could be written.
bool writeFile(const QString &name, const QByteArray &content = {});

QByteArray readFile(const QString &name); ///< empty when it cannot be read
QString readText(const QString &name); ///< UTF-8, the system's line ends as line feeds

} // namespace KrTest
