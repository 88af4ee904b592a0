#pragma once

#include <QFont>
#include <QString>

class QLabel;
class QWidget;

/// What the texts around the stage have in common.
namespace Player {

QFont scaled(QFont font, qreal factor, int weight);
QLabel *createLabel(const QString &objectName, QWidget *parent); ///< of plain text
void makeFaint(QLabel *label);

} // namespace Player
