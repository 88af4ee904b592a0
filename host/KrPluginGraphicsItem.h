#pragma once

#include <QGraphicsRectItem>
#include <QObject>
#include <QSizeF>

namespace Kora {

/// Base of every item that a plug-in puts on the host's stage.
///
/// The order of the virtual functions is part of the binary contract.
class KrPluginGraphicsItem : public QGraphicsRectItem
{
public:
    using QGraphicsRectItem::QGraphicsRectItem;

    virtual void setItemSize(qreal width, qreal height) = 0; ///< in scene units
    virtual void setItemSize(const QSizeF &size) = 0;
};

} // namespace Kora

Q_DECLARE_INTERFACE(Kora::KrPluginGraphicsItem, "KrPluginGraphicsItem")
