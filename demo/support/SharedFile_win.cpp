#include "demo/support/SharedFile.h"

#include <QDir>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace Demo {

namespace {

/// A descriptor of the file that lets others rename, remove and replace it; -1 when there is none.
int sharedDescriptor(const QString &name)
{
    const QString native = QDir::toNativeSeparators(name);
    HANDLE handle = CreateFileW(reinterpret_cast<const wchar_t *>(native.utf16()), GENERIC_READ,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return -1;
    const int descriptor
        = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_RDONLY | _O_BINARY);
    if (descriptor < 0)
        CloseHandle(handle);
    return descriptor;
}

} // namespace

bool openShared(QFile &file, QString *error)
{
    const int descriptor = sharedDescriptor(file.fileName());
    if (descriptor >= 0) {
        if (file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
            return true;
        _close(descriptor);
    }
    // QFile shares less, but knows more: names of any length, and what is wrong.
    const bool opened = file.open(QIODevice::ReadOnly);
    if (!opened)
        *error = file.errorString();
    return opened;
}

} // namespace Demo
