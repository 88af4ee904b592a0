#include "demo/player/AskUser.h"

namespace Player {

int ask(QMessageBox::Icon icon, const QString &title, const QString &text,
    QMessageBox::StandardButtons buttons, QMessageBox::StandardButton defaultButton,
    QWidget *parent)
{
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(defaultButton);
    return box.exec();
}

} // namespace Player
