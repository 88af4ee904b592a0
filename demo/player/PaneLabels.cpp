#include "demo/player/PaneLabels.h"

#include <QLabel>
#include <QPalette>

namespace Player {

QFont scaled(QFont font, qreal factor, int weight)
{
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setWeight(weight);
    return font;
}

QLabel *createLabel(const QString &objectName, QWidget *parent)
{
    auto *const label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText); // most texts come from files
    return label;
}

void makeFaint(QLabel *label)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, QColor(0x9a, 0xa5, 0xb1));
    label->setPalette(palette);
}

} // namespace Player
