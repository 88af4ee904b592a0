#include "monitor/OfflineTextDocument.h"

#include <QAbstractTextDocumentLayout>
#include <QTextObjectInterface>

namespace PluginKrHvcP2 {

namespace {

/// Qt's own image handler opens the file itself when the document has no resource for it.
class EmptyImageHandler : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    using QObject::QObject;

    QSizeF intrinsicSize(
        QTextDocument * /*document*/, int /*position*/, const QTextFormat & /*format*/) override
    {
        return {0, 0};
    }

    void drawObject(QPainter * /*painter*/, const QRectF & /*rect*/, QTextDocument * /*document*/,
        int /*position*/, const QTextFormat & /*format*/) override
    { }
};

} // namespace

OfflineTextDocument::OfflineTextDocument(QObject *parent)
    : QTextDocument(parent)
{
    documentLayout()->registerHandler(QTextFormat::ImageObject, new EmptyImageHandler(this));
}

QVariant OfflineTextDocument::loadResource(int /*type*/, const QUrl & /*name*/)
{
    return {};
}

} // namespace PluginKrHvcP2

#include "OfflineTextDocument.moc"
