#include <QObject>

/// A Qt plug-in that is no screen plug-in.
class PlainPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.example.plain/1.0")
};

#include "PlainPlugin.moc"
