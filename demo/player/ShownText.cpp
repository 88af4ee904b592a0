#include "demo/player/ShownText.h"

#include <QTextDocument>

namespace Player {

QString plainToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

} // namespace Player
