#include "demo/player/ShownText.h"

#include <QTextDocument>

namespace Player {

QString shortened(const QString &text, int limit)
{
    if (text.size() <= limit)
        return text;
    QString beginning = text.left(limit - 1);
    if (text.at(limit - 1).isLowSurrogate())
        beginning.chop(1);
    return beginning + QChar(0x2026);
}

QString plainToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

} // namespace Player
