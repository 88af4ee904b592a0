#include "demo/player/ShownText.h"

#include <QTextDocument>

namespace Player {

QString plainToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

QString withoutMnemonic(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString oneLine(QString text)
{
    for (QChar &character : text) {
        if (character == QChar::LineSeparator || character == QChar::ParagraphSeparator
            || character.category() == QChar::Other_Control)
            character = QLatin1Char(' ');
    }
    return text;
}

} // namespace Player
