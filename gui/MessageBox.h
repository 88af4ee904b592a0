#pragma once

#include <QMessageBox>

namespace PluginKrHvcP2 {

/// Shows a modal box with an Ok button. Unlike QMessageBox's static functions it stands the
/// deletion of @p parent while it is open; the caller asks whether it is still there itself.
void showMessageBox(
    QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text);

} // namespace PluginKrHvcP2
