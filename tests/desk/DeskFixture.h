#pragma once

#include "tests/desk/BoxFont.h"
#include "tests/desk/GoldenPicture.h"

#include <QHelpEvent>
#include <QPalette>
#include <QTest>
#include <QToolTip>
#include <QWidget>

/// What the tests of the views share.
namespace KrTest {

/// Gives @p view a size, a font and colours that are the same everywhere, and shows it.
inline void prepareForPicture(QWidget *view, const QSize &size)
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x1b, 0x20, 0x26));
    palette.setColor(QPalette::Base, QColor(0x14, 0x18, 0x1d));
    palette.setColor(QPalette::AlternateBase, QColor(0x19, 0x1e, 0x24));
    palette.setColor(QPalette::Text, QColor(0xe4, 0xe8, 0xec));
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(0x3a, 0x78, 0xc2));
    view->setPalette(palette);
    view->setFont(boxFont(12));
    view->resize(size);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view));
}

/// Where only the boxes of the font may be drawn differently, there are no golden pictures.
inline void compareWithGolden(QWidget *view, const QString &name)
{
#ifdef Q_OS_WIN
    Q_UNUSED(view)
    Q_UNUSED(name)
    QSKIP("Letters are drawn differently here.");
#else
    compareWithGoldenPicture(view->grab().toImage(), name, {32, 0.004});
#endif
}

/// What @p view tells of @p point; empty when it tells nothing.
inline QString toolTipAt(QWidget *view, const QPoint &point)
{
    QHelpEvent event(QEvent::ToolTip, point, view->mapToGlobal(point));
    QCoreApplication::sendEvent(view, &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

} // namespace KrTest
