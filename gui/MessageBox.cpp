#include "gui/MessageBox.h"

#include <QPointer>

namespace PluginKrHvcP2 {

void showMessageBox(
    QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text)
{
    const QPointer<QMessageBox> box(new QMessageBox(icon, title, text, QMessageBox::Ok, parent));
    box->exec();
    delete box;
}

} // namespace PluginKrHvcP2
