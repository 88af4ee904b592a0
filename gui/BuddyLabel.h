#pragma once

#include <QLabel>

namespace PluginKrHvcP2 {

/// A label whose mnemonic and screen reader name belong to @p buddy. The caller owns it.
QLabel *createBuddyLabel(const QString &text, QWidget *buddy);

} // namespace PluginKrHvcP2
