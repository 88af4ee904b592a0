#include "demo/player/WindowState.h"

#include "demo/support/UserFile.h"

#include <QMainWindow>
#include <QSettings>
#include <QSplitter>
#include <QStandardPaths>

namespace Player::WindowState {

namespace {

QString geometryKey()
{
    return QStringLiteral("window/geometry");
}

QString splitterKey(const QSplitter *splitter)
{
    return QStringLiteral("splitter/") + splitter->objectName();
}

} // namespace

QString defaultFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)
        + QLatin1String("/window.ini");
}

void restore(QMainWindow *window, const QString &fileName)
{
    if (Demo::UserFile::isNoFile(fileName))
        return;
    const QSettings settings(fileName, QSettings::IniFormat);
    window->restoreGeometry(settings.value(geometryKey()).toByteArray());
    const auto splitters = window->findChildren<QSplitter *>();
    for (QSplitter *const splitter : splitters)
        splitter->restoreState(settings.value(splitterKey(splitter)).toByteArray());
}

void save(const QMainWindow *window, const QString &fileName)
{
    if (Demo::UserFile::isNoFile(fileName))
        return;
    QSettings settings(fileName, QSettings::IniFormat);
    settings.setValue(geometryKey(), window->saveGeometry());
    const auto splitters = window->findChildren<const QSplitter *>();
    for (const QSplitter *const splitter : splitters)
        settings.setValue(splitterKey(splitter), splitter->saveState());
}

} // namespace Player::WindowState
