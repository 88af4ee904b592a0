#pragma once

#include <QMessageBox>

namespace Player {

/// Opens a message box, whose text may come from a file and is no HTML; returns the answer.
int ask(QMessageBox::Icon icon, const QString &title, const QString &text,
    QMessageBox::StandardButtons buttons, QMessageBox::StandardButton defaultButton,
    QWidget *parent);

} // namespace Player
