#pragma once

#include "host/KrPluginGuiInterface.h"

#include <QObject>
#include <QPointer>
#include <QRect>

class QDialog;

namespace PluginKrHvcP2 {

class KrHvcContentPropertyWidget;
class KrHvcScreenPropertyWidget;

// moc answers for a base class under the name that the class head gives it.
using Kora::KrPluginGuiInterface;

/// The plug-in's part of the host's editor: two menu actions and the dialogs behind them.
///
/// Everything is built when it is first asked for, and reused. The dialogs are modal; they may be
/// left with this object already deleted.
class KrHvcGui : public QObject, public KrPluginGuiInterface
{
    Q_OBJECT

public:
    explicit KrHvcGui(QObject *parent = nullptr);
    ~KrHvcGui() override;

    bool hasScreenPropertyWidget() const override { return true; }
    int screenPropertyKind() const override { return 1; }
    bool hasStagePropertyWidget() const override { return false; }
    bool hasScreenPropertyDialog() const override { return true; }
    QWidget *screenPropertyWidget() override;
    int execScreenPropertyDialog(const QRect &anchor) override;
    bool hasPluginPropertyActions() const override { return true; }
    QList<QAction *> pluginPropertyActions() override;
    bool canEditContents() const override { return true; }
    int maximumContentCount() const override { return 20; }
    int contentKind() const override { return 2; }
    bool canReorderContents() const override { return false; }
    bool hasContentPropertyWidget() const override { return true; }
    QWidget *contentPropertyWidget() override;
    void execContentPropertyDialog(int seqIndex, const QRect &anchor) override;
    bool canAddContents() const override { return true; }
    QList<QAction *> addContentActions() override;
    QObject *object() override { return this; }

    // Hosts connect by name and index, and invoke the slots by name: keep their order.
signals:
    void screenValuesUpdated(int screenId, QList<int> seqIndexList) override;
    void stageValuesUpdated() override; ///< never emitted
    void requestAddContents(int screenId, QMap<int, QVariant> contents) override;

private slots:
    void onContentPropertyAccepted();
    void onContentPropertyRejected();
    void onScreenPropertyAccepted();
    void onScreenPropertyRejected();
    void saveContentDialogGeometory();
    void restoreContentDialogGoemetory();
    void onScreenValuesUpdated(int screenId, const QList<int> &seqIndexList);
    void onActionPluginPropertyTriggerd(bool checked = false);
    void onActionAddContentTriggerd(bool checked = false);
    void onAddingContentsRequested(int screenId, const QMap<int, QVariant> &contents);

private:
    KrHvcContentPropertyWidget *contentWidget();
    KrHvcScreenPropertyWidget *screenWidget();
    QDialog *contentDialog();
    QDialog *screenDialog();
    bool refuseFullScreen();
    void showContentDialog(const QString &title, const QRect &anchor);

    // The host is given the widgets and may delete them with a window of its own.
    QPointer<KrHvcContentPropertyWidget> m_contentWidget; // child of the dialog once that exists
    QPointer<QDialog> m_contentDialog; // owned
    // These two live until the process ends.
    QPointer<KrHvcScreenPropertyWidget> m_screenWidget;
    QPointer<QDialog> m_screenDialog;
    QList<QAction *> m_pluginPropertyActions; // owned
    QList<QAction *> m_addContentActions; // owned
    QRect m_contentDialogGeometry; // null until it was saved
};

} // namespace PluginKrHvcP2
