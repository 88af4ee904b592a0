#include "gui/BuddyLabel.h"

namespace PluginKrHvcP2 {

QLabel *createBuddyLabel(const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

} // namespace PluginKrHvcP2
