#pragma once

#include "core/screen/IntegerRange.h"

#include <QString>

class QLabel;
class QSpacerItem;
class QSpinBox;
class QWidget;

// What the forms of both editors are made of. The caller owns what these functions create, until a
// layout takes it over.
namespace PluginKrHvcP2 {

/// A right-aligned spin box with the object name @p name.
QSpinBox *createSpinBox(const QString &name, const IntegerRange &range);

/// A label whose mnemonic and screen reader name belong to @p buddy.
QLabel *createBuddyLabel(const QString &text, QWidget *buddy);

/// A text below what it explains. Its colour comes from @p styleSheet and is fixed, also where a
/// dark palette makes it hard to read.
QLabel *createNote(const QString &text, const QString &styleSheet);

/// A note in smaller letters that wraps where the form is too narrow for it.
QLabel *createWrappedNote(const QString &text, const QString &styleSheet);

/// Takes the room that a row leaves, at least @p width by @p height pixels.
QSpacerItem *createRowSpacer(int width, int height);

QSpacerItem *createFixedSpacer(int size); ///< a square of @p size pixels
QSpacerItem *createBottomSpacer(); ///< takes the height that a form leaves

} // namespace PluginKrHvcP2
