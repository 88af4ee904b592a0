#pragma once

#include <QStringList>

namespace KrTest {

/// Runs this program once more in namespaces of its own; @p options are those of unshare. Does not
/// return, unless the system grants none.
void runInOwnNamespaces(const QStringList &options, char *argv[]);

/// True in the program that runInOwnNamespaces() has started.
bool isInOwnNamespaces();

} // namespace KrTest
