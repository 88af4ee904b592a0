#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

namespace KrTest {

/// Number of files and other objects of the system that this process holds open.
int openHandles();

/// Processor time that this process has used.
double processorSeconds();

/// Processor time that the host of a virtual machine has given to others since its start, of all
/// processors; 0 where nobody tells.
double stolenSeconds();

/// Bytes of this process that are in the machine's memory; 0 under a sanitizer that keeps what was
/// freed.
qint64 residentMemory();

/// Bytes that the C library has given out and not got back; 0 where it does not tell.
qint64 allocatedMemory();

/// True while the library lies in this process's memory. @p fileName is absolute.
bool isMapped(const QString &fileName);

/// Sets the variable TZ of this process, and the time zone with it.
void setTimeZone(const QByteArray &name);

} // namespace KrTest
