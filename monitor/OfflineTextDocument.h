#pragma once

#include <QTextDocument>

namespace PluginKrHvcP2 {

/// A text document that never opens a file or network share that its HTML names. Images stay empty,
/// in the size that their tags name.
///
/// The sensor program's output goes into HTML as it is; an image or background in it must not make
/// the host's GUI thread wait for a remote server or send it the user's credentials.
///
/// It has no layout until somebody asks for one. A layout needs fonts, and so a GUI application.
class OfflineTextDocument : public QTextDocument
{
    Q_OBJECT

public:
    explicit OfflineTextDocument(QObject *parent = nullptr);

protected:
    QVariant loadResource(int type, const QUrl &name) override;

private:
    void keepImagesOut();
};

} // namespace PluginKrHvcP2
