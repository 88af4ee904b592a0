#include "monitor/OfflineTextDocument.h"

#include <QAbstractTextDocumentLayout>
#include <QTextFormat>
#include <QTextObjectInterface>

namespace PluginKrHvcP2 {

namespace {

/// Leaves the room that an image's tag asks for. Qt's own handler opens the file itself when the
/// document has no resource for it.
class EmptyImageHandler : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    QSizeF intrinsicSize(
        QTextDocument * /*document*/, int /*position*/, const QTextFormat &format) override
    {
        const QTextImageFormat image = format.toImageFormat();
        return {image.width(), image.height()}; // 0 for what the tag does not name
    }

    void drawObject(QPainter * /*painter*/, const QRectF & /*rect*/, QTextDocument * /*document*/,
        int /*position*/, const QTextFormat & /*format*/) override
    { }
};

/// It has no state, so one serves the layouts of all documents.
EmptyImageHandler *imageHandler()
{
    static EmptyImageHandler handler;
    return &handler;
}

} // namespace

OfflineTextDocument::OfflineTextDocument(QObject *parent)
    : QTextDocument(parent)
{
    connect(this, &QTextDocument::documentLayoutChanged, this, &OfflineTextDocument::keepImagesOut);
}

QVariant OfflineTextDocument::loadResource(int /*type*/, const QUrl & /*name*/)
{
    return {};
}

/// Sent for a new layout before that lays out anything.
void OfflineTextDocument::keepImagesOut()
{
    documentLayout()->registerHandler(QTextFormat::ImageObject, imageHandler());
}

} // namespace PluginKrHvcP2

#include "OfflineTextDocument.moc"
