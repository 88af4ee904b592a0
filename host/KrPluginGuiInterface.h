#pragma once

#include <QList>
#include <QMap>
#include <QRect>
#include <QVariant>

class QAction;
class QObject;
class QWidget;

namespace Kora {

class KrPluginStage;

/// The settings GUI that a plug-in contributes to the host's editor.
///
/// The order of the virtual functions (the destructor comes last) and the exact parameter types
/// are the binary contract between host and plug-in: never sort, insert or "improve" them.
class KrPluginGuiInterface
{
public:
    virtual bool hasScreenPropertyWidget() const = 0;
    virtual int screenPropertyKind() const = 0;
    virtual bool hasStagePropertyWidget() const = 0;
    virtual bool hasScreenPropertyDialog() const = 0;

    /// Owned by the plug-in; created on first request.
    virtual QWidget *screenPropertyWidget() = 0;

    /// Shows the screen's settings modally beside @p anchor (global coordinates; null: where the
    /// window system puts it). Returns QDialog::exec()'s result.
    virtual int execScreenPropertyDialog(const QRect &anchor) = 0;

    virtual bool hasPluginPropertyActions() const = 0;
    virtual QList<QAction *> pluginPropertyActions() = 0; ///< owned by the plug-in
    virtual bool canEditContents() const = 0;
    virtual int maximumContentCount() const = 0; ///< per screen
    virtual int contentKind() const = 0;
    virtual bool canReorderContents() const = 0;
    virtual bool hasContentPropertyWidget() const = 0;

    /// Owned by the plug-in; created on first request.
    virtual QWidget *contentPropertyWidget() = 0;

    /// Edits the content of the zero-based @p seqIndex modally beside @p anchor (global
    /// coordinates; null: near the cursor).
    virtual void execContentPropertyDialog(int seqIndex, const QRect &anchor) = 0;

    virtual bool canAddContents() const = 0;
    virtual QList<QAction *> addContentActions() = 0; ///< owned by the plug-in

    /// The edited screen's parameter map; not owned.
    virtual QVariant *pluginData() const { return m_pluginData; }
    virtual void setPluginData(QVariant *pluginData) { m_pluginData = pluginData; }

    /// The stage; not owned.
    virtual KrPluginStage *stage() const { return m_stage; }
    virtual void setStage(KrPluginStage *stage) { m_stage = stage; }

    virtual QObject *object() = 0; ///< the object that sends the signals; connect to it by name

    /// Signal: settings of the screen (empty list) or of the contents listed have changed.
    virtual void screenValuesUpdated(int screenId, QList<int> seqIndexList) = 0;
    /// Signal: values of the stage have changed.
    virtual void stageValuesUpdated() = 0;
    /// Signal: the host is asked to add content entries, by zero-based sequence index.
    virtual void requestAddContents(int screenId, QMap<int, QVariant> contents) = 0;

    virtual ~KrPluginGuiInterface() = default;

protected:
    QVariant *m_pluginData = nullptr;
    KrPluginStage *m_stage = nullptr;
};

} // namespace Kora
