#pragma once

#include <QTextDocument>

namespace PluginKrHvcP2 {

/// A text document that never opens a file or network share that its HTML names. Images are left
/// out.
///
/// The sensor program's output goes into HTML as it is; an image or background in it must not make
/// the host's GUI thread wait for a remote server or send it the user's credentials.
class OfflineTextDocument : public QTextDocument
{
    Q_OBJECT

public:
    explicit OfflineTextDocument(QObject *parent = nullptr);

protected:
    QVariant loadResource(int type, const QUrl &name) override;
};

} // namespace PluginKrHvcP2
