#include "demo/player/CardItem.h"

#include "demo/support/UserFile.h"

#include <QFileInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImageReader>
#include <QLinearGradient>
#include <QLoggingCategory>
#include <QPainter>

namespace Player {

namespace {

Q_LOGGING_CATEGORY(krhvcPlayer, "krhvcp2.player", QtWarningMsg)

// Most formats are read in full before they are scaled.
constexpr int MaxPictureBytes = 64 * 1024 * 1024;
constexpr int MaxPixels = 100 * 1000 * 1000;

QColor whiteWithAlpha(int alpha)
{
    return {255, 255, 255, alpha};
}

/// A font of @p pixels, made smaller until the longest word and the wrapped text fit @p size.
QFont fittingFont(const QString &text, int pixels, int weight, const QSizeF &size)
{
    QFont font = QGuiApplication::font();
    font.setWeight(weight);
    for (int height = qMax(pixels, 8);; height -= qMax(1, height / 12)) {
        font.setPixelSize(height);
        const QRectF needed = QFontMetricsF(font).boundingRect(
            QRectF(QPointF(), size), Qt::AlignLeft | Qt::TextWordWrap, text);
        if (height <= 8 || (needed.width() <= size.width() && needed.height() <= size.height()))
            return font;
    }
}

/// The picture, scaled to @p room; null with the reason in @p error.
QImage readPicture(const QString &fileName, const QSize &room, QString *error)
{
    const auto refuse = [error](const QString &reason) {
        *error = reason;
        return QImage();
    };
    if (Demo::UserFile::isNoFile(fileName))
        return refuse(CardItem::tr("is not a file"));
    if (QFileInfo(fileName).size() > MaxPictureBytes)
        return refuse(CardItem::tr("is too large"));
    QImageReader reader(fileName);
    QSize size = reader.size();
    if (static_cast<qint64>(size.width()) * size.height() > MaxPixels)
        return refuse(CardItem::tr("is too large"));
    if (size.isValid()) {
        size.scale(room, Qt::KeepAspectRatio);
        reader.setScaledSize(size); // vector pictures stay sharp
    }
    QImage image = reader.read();
    *error = reader.errorString();
    return image;
}

} // namespace

CardItem::CardItem(const StageContent &content, int count, QGraphicsItem *parent)
    : QGraphicsObject(parent)
    , m_content(content)
    , m_count(count)
{
    // The panel's messages slide over the card all the time; they must not redraw it.
    setCacheMode(DeviceCoordinateCache);
}

void CardItem::setGeometry(const QSizeF &size, const QRectF &textArea)
{
    if (size == m_size && textArea == m_textArea)
        return;
    prepareGeometryChange();
    m_size = size;
    m_textArea = textArea;
    loadPicture({textArea.width(), textArea.height() * 0.38});
    update();
}

void CardItem::paint(
    QPainter *painter, const QStyleOptionGraphicsItem * /*option*/, QWidget * /*widget*/)
{
    if (m_size.isEmpty())
        return;
    painter->setRenderHints(
        QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    paintBackground(painter);

    const qreal unit = m_textArea.height();
    const QPointF left = m_textArea.topLeft();
    const qreal width = m_textArea.width();
    paintHeader(painter, {left, QSizeF(width, unit * 0.15)});
    if (!m_picture.isNull())
        painter->drawPixmap(left + QPointF(0, unit * 0.20), m_picture);
    const qreal titleTop = m_picture.isNull() ? 0.30 : 0.61;
    paintTitle(
        painter, {left + QPointF(0, unit * titleTop), QSizeF(width, unit * (0.93 - titleTop))});
    paintPosition(painter, {left + QPointF(0, unit * 0.97), QSizeF(width, unit * 0.03)});
}

void CardItem::loadPicture(const QSizeF &size)
{
    m_picture = QPixmap();
    if (m_content.picture.isEmpty() || size.isEmpty())
        return;
    const qreal ratio = qGuiApp->devicePixelRatio();
    QString error;
    const QImage image = readPicture(m_content.picture, (size * ratio).toSize(), &error);
    if (image.isNull()) {
        qCWarning(krhvcPlayer, "%s: %s", qUtf8Printable(m_content.picture), qUtf8Printable(error));
        m_content.picture.clear(); // said once
        return;
    }
    m_picture = QPixmap::fromImage(image);
    m_picture.setDevicePixelRatio(ratio);
}

void CardItem::paintBackground(QPainter *painter) const
{
    QLinearGradient gradient(0, 0, m_size.width(), m_size.height());
    gradient.setColorAt(0, m_content.color.lighter(112));
    gradient.setColorAt(1, m_content.color.darker(175));
    painter->fillRect(boundingRect(), gradient);

    painter->save();
    painter->setClipRect(boundingRect());
    painter->setPen(Qt::NoPen);
    painter->setBrush(whiteWithAlpha(16));
    const qreal unit = m_size.height();
    painter->drawEllipse(QPointF(unit * 0.05, unit * 1.02), unit * 0.62, unit * 0.62);
    painter->drawEllipse(QPointF(unit * 0.30, unit * 1.10), unit * 0.40, unit * 0.40);
    painter->drawEllipse(QPointF(m_size.width() - unit * 0.1, 0), unit * 0.75, unit * 0.75);
    painter->restore();
}

void CardItem::paintHeader(QPainter *painter, const QRectF &area) const
{
    QRectF nameArea = area;
    if (m_content.number > 0) {
        const QString number = QStringLiteral("#%1").arg(m_content.number);
        QFont font = QGuiApplication::font();
        font.setWeight(QFont::Bold);
        font.setPixelSize(qMax(1, qRound(area.height() * 0.62)));
        QRectF chip = area;
        chip.setWidth(QFontMetricsF(font).boundingRect(number).width() + area.height() * 0.55);
        painter->setPen(Qt::NoPen);
        painter->setBrush(Qt::white);
        painter->drawRoundedRect(chip, area.height() * 0.22, area.height() * 0.22);
        painter->setPen(m_content.color.darker(135));
        painter->setFont(font);
        painter->drawText(chip, Qt::AlignCenter, number);
        nameArea.setLeft(chip.right() + area.height() * 0.3);
    }
    const int pixels = qRound(area.height() * 0.48);
    painter->setFont(fittingFont(m_content.name, pixels, QFont::DemiBold, nameArea.size()));
    painter->setPen(Qt::white);
    painter->drawText(
        nameArea, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, m_content.name);
}

void CardItem::paintTitle(QPainter *painter, const QRectF &area) const
{
    QRectF titleArea = area;
    titleArea.setHeight(area.height() * 0.68);
    const int pixels = qRound(m_textArea.height() * 0.115);
    painter->setFont(fittingFont(m_content.title, pixels, QFont::Bold, titleArea.size()));
    painter->setPen(Qt::white);
    QRectF used;
    painter->drawText(
        titleArea, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_content.title, &used);

    QRectF subtitleArea = area;
    subtitleArea.setTop(used.bottom() + m_textArea.height() * 0.015);
    const int small = qRound(m_textArea.height() * 0.052);
    painter->setFont(fittingFont(m_content.subtitle, small, QFont::Normal, subtitleArea.size()));
    painter->setPen(whiteWithAlpha(215));
    painter->drawText(
        subtitleArea, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_content.subtitle);
}

void CardItem::paintPosition(QPainter *painter, const QRectF &area) const
{
    // One bar a sequence; they shrink rather than leave the area.
    const qreal step = qMin(area.height() * 2.6, area.width() / qMax(1, m_count));
    painter->setPen(Qt::NoPen);
    for (int number = 1; number <= m_count; ++number) {
        const QRectF bar(area.left() + (number - 1) * step, area.center().y() - area.height() * 0.2,
            step * 0.72, area.height() * 0.4);
        painter->setBrush(whiteWithAlpha(number == m_content.number ? 240 : 70));
        painter->drawRoundedRect(bar, bar.height() / 2, bar.height() / 2);
    }
}

} // namespace Player
