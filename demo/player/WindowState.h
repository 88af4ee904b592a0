#pragma once

#include <QString>

class QMainWindow;

/// Size, place and division of a window, kept from one run of the player to the next.
namespace Player::WindowState {

QString defaultFile(); ///< the user's own

/// Nothing happens when there is no such file, or nothing of use in it.
void restore(QMainWindow *window, const QString &fileName);

/// A file that cannot be written is left alone. Splitters are known by their object names.
void save(const QMainWindow *window, const QString &fileName);

} // namespace Player::WindowState
