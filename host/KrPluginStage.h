#pragma once

#include <QMap>
#include <QVariantMap>

namespace Kora {

/// The stage as the host describes it to its plug-ins. The host fills it; a plug-in only reads.
///
/// The order of the virtual functions and of the members is part of the binary contract.
class KrPluginStage
{
public:
    virtual ~KrPluginStage() = default;

    /// The screens by screen id. A screen's "event" entry lists its links to other screens.
    virtual QMap<int, QVariantMap> screens() const { return m_screens; }
    virtual void setScreens(const QMap<int, QVariantMap> &screens) { m_screens = screens; }

    /// The contents by content id; the host's own.
    virtual QMap<int, QVariantMap> contents() const { return m_contents; }
    virtual void setContents(const QMap<int, QVariantMap> &contents) { m_contents = contents; }

private:
    QMap<int, QVariantMap> m_screens;
    QMap<int, QVariantMap> m_contents;
};

} // namespace Kora
