#include "demo/support/ExecutableFormat.h"

#include <QSysInfo>
#include <QtEndian>

namespace Demo {

namespace {

QString x64()
{
    return QStringLiteral("x86_64");
}

QString x86()
{
    return QStringLiteral("i386");
}

QString arm64()
{
    return QStringLiteral("arm64");
}

/// The number of 2 bytes at @p offset, least significant byte first; 0 beyond the end.
quint16 shortAt(const QByteArray &bytes, int offset)
{
    return offset < 0 || offset > bytes.size() - 2
        ? quint16(0)
        : qFromLittleEndian<quint16>(bytes.constData() + offset);
}

QString windowsProcessor(quint16 machine)
{
    switch (machine) {
    case 0x8664:
        return x64();
    case 0x014c:
        return x86();
    case 0xaa64:
        return arm64();
    default:
        return {};
    }
}

QString linuxProcessor(quint16 machine)
{
    switch (machine) {
    case 62:
        return x64();
    case 3:
        return x86();
    case 183:
        return arm64();
    default:
        return {};
    }
}

} // namespace

ExecutableFormat ExecutableFormat::of(const QByteArray &header)
{
    if (header.startsWith("#!"))
        return {Script, QString()};
    if (header.startsWith("\x7f"
                          "ELF"))
        return {Linux, linuxProcessor(shortAt(header, 18))};
    const int start = shortAt(header, 60); // of the part behind the one for DOS
    if (header.startsWith("MZ") && header.mid(start, 4) == QByteArray("PE\0\0", 4))
        return {Windows, windowsProcessor(shortAt(header, start + 4))};
    return {};
}

ExecutableFormat ExecutableFormat::ofThisProgram()
{
#ifdef Q_OS_WIN
    return {Windows, QSysInfo::buildCpuArchitecture()};
#else
    return {Linux, QSysInfo::buildCpuArchitecture()};
#endif
}

bool ExecutableFormat::runsOn(System runner, const QString &machine) const
{
    if (system == Script)
        return runner == Linux;
    const bool isOlder = processor == x86() && machine == x64(); // which runs these, too
    return system == runner && (processor == machine || isOlder);
}

QString ExecutableFormat::toText() const
{
    const QString suffix
        = processor.isEmpty() ? QString() : QStringLiteral(" for %1").arg(processor);
    switch (system) {
    case Windows:
        return QStringLiteral("a Windows program") + suffix;
    case Linux:
        return QStringLiteral("a Linux program") + suffix;
    case Script:
        return QStringLiteral("a script");
    case Unknown:
        break;
    }
    return QStringLiteral("no program");
}

} // namespace Demo
