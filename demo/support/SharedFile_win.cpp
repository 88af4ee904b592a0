#include "demo/support/SharedFile.h"

#include <QDir>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace Demo {

namespace {

QString nativeName(const QString &name)
{
    return QDir::toNativeSeparators(name);
}

const wchar_t *wide(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

/// A descriptor of the file that lets others rename, remove and replace it; -1 when there is none.
int sharedDescriptor(const QString &name)
{
    HANDLE handle = CreateFileW(wide(nativeName(name)), GENERIC_READ,
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

bool renameOver(const QString &from, const QString &to, QString *error)
{
    if (MoveFileExW(wide(nativeName(from)), wide(nativeName(to)), MOVEFILE_REPLACE_EXISTING) != 0)
        return true;
    *error = qt_error_string(static_cast<int>(GetLastError()));
    return false;
}

} // namespace Demo
