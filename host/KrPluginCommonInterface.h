#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

namespace Kora {

/// What every plug-in of the framework answers, whatever it extends.
///
/// The order of the virtual functions and of the data members, and the exact parameter types, are
/// the binary contract between host and plug-in: never sort, insert or "improve" them.
class KrPluginCommonInterface
{
public:
    virtual ~KrPluginCommonInterface() = default;

    virtual QString name() const = 0;
    virtual QString path() const = 0; ///< directory the plug-in file lies in
    virtual void setPath(const QString &path) = 0;
    virtual int apiLevel() const = 0;
    virtual QString identifier() const = 0; ///< reverse-domain id, unique among plug-ins
    virtual QString version() const = 0;

    /// True when @p id is "identifier/version" of this plug-in, in any letter case.
    virtual bool isSameAs(const QString &id) const
    {
        const QString own = QStringLiteral("%1/%2").arg(identifier(), version());
        return own.compare(id, Qt::CaseInsensitive) == 0;
    }

    virtual bool hasGraphicsItem() const = 0;
    virtual int kind() const = 0;
    virtual QVariant params() const = 0; ///< the settings as a QVariantMap
    virtual bool hasParams() const = 0;
    virtual QObject *object() = 0; ///< the object that sends the signals; connect to it by name
    virtual QString shortName() const = 0;
    virtual QString displayName() const = 0;
    virtual QString description() const = 0;

    /// Signal: the plug-in asks the host to log @p message; @p LogDivision is 0 (no logging) to 5
    /// (information).
    virtual void throwLogMessage(const QString &message, int LogDivision) = 0;

protected:
    QString m_name;
    QString m_path;
    qint32 m_apiLevel = 0;
    QString m_identifier;
    QString m_version;
    qint32 m_kind = 0;
};

} // namespace Kora

Q_DECLARE_INTERFACE(Kora::KrPluginCommonInterface, "com.velmora.kora.plugin.CommonInterface/1.0")
