#include "gui/KrHvcGui.h"

#include "gui/DialogPlacement.h"
#include "gui/KrHvcContentPropertyWidget.h"
#include "gui/KrHvcScreenPropertyWidget.h"
#include "gui/MessageBox.h"
#include "host/KrPluginKeys.h"

#include <QAction>
#include <QBoxLayout>
#include <QCursor>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QPointer>
#include <QScreen>

#include <utility>

namespace PluginKrHvcP2 {

namespace {

constexpr int ContentDialogRoom = 300;
constexpr int ScreenDialogRoom = 360;
constexpr QSize ScreenDialogSize{300, 300};

QDialog *createDialog(QWidget *content)
{
    auto *dialog = new QDialog;
    dialog->setWindowFlags(dialog->windowFlags() ^ Qt::WindowContextHelpButtonHint);
    // Else exec(), ended by the application's quit(), leaves a window that blocks others for good.
    dialog->setModal(true);
    auto *layout = new QBoxLayout(QBoxLayout::TopToBottom, dialog);
    layout->addWidget(content);
    layout->addWidget(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
    return dialog;
}

void placeDialog(QDialog *dialog, const QRect &anchor, int horizontalRoom)
{
    if (const QScreen *screen = QGuiApplication::screenAt(QCursor::pos()))
        dialog->move(dialogPosition(anchor, screen->geometry(), horizontalRoom));
}

/// Lets a dialog that opens again start in its first field, not on the button that closed it.
void forgetFocus(const QDialog *dialog)
{
    QWidget *focused = dialog->focusWidget();
    if (focused != nullptr && !dialog->isVisible())
        focused->clearFocus();
}

void deleteActions(QList<QAction *> &actions)
{
    const QList<QAction *> owned = std::exchange(actions, {});
    for (QAction *action : owned) {
        action->setParent(nullptr);
        delete action;
    }
}

} // namespace

KrHvcGui::KrHvcGui(QObject *parent)
    : QObject(parent)
{ }

KrHvcGui::~KrHvcGui()
{
    if (m_contentWidget) {
        m_contentWidget->setParent(nullptr);
        delete m_contentWidget;
    }
    delete m_contentDialog;
    deleteActions(m_pluginPropertyActions);
    deleteActions(m_addContentActions);

    // What stays behind must not reach the map any more, nor block the host when it is open. One
    // that is not open must not be rejected: Qt would take it for the last window that was closed.
    if (m_screenWidget)
        m_screenWidget->setPluginData(nullptr);
    if (m_screenDialog && m_screenDialog->isVisible())
        m_screenDialog->reject();
}

QWidget *KrHvcGui::screenPropertyWidget()
{
    return screenWidget();
}

int KrHvcGui::execScreenPropertyDialog(const QRect &anchor)
{
    screenWidget()->loadValues();
    QDialog *dialog = screenDialog();
    if (anchor.isNull())
        dialog->resize(ScreenDialogSize);
    else
        placeDialog(dialog, anchor, ScreenDialogRoom);
    forgetFocus(dialog);
    return dialog->exec();
}

QList<QAction *> KrHvcGui::pluginPropertyActions()
{
    if (m_pluginPropertyActions.isEmpty()) {
        auto *action = new QAction(tr("&HVC Plugin Property..."));
        action->setObjectName(QStringLiteral("Action_Plugin_HVC_Screen_Property"));
        connect(action, &QAction::triggered, this, &KrHvcGui::onActionPluginPropertyTriggerd);
        m_pluginPropertyActions.append(action);
    }
    return m_pluginPropertyActions;
}

QWidget *KrHvcGui::contentPropertyWidget()
{
    return contentWidget();
}

void KrHvcGui::execContentPropertyDialog(int seqIndex, const QRect &anchor)
{
    contentWidget()->loadContent(seqIndex);
    showContentDialog(tr("HVC Detection Property"), anchor);
}

QList<QAction *> KrHvcGui::addContentActions()
{
    if (m_addContentActions.isEmpty()) {
        auto *action = new QAction(tr("&Add HVC Detection Setting..."));
        action->setObjectName(QStringLiteral("Action_Plugin_HVC_Add_Detection_Setting"));
        connect(action, &QAction::triggered, this, &KrHvcGui::onActionAddContentTriggerd);
        m_addContentActions.append(action);
    }
    return m_addContentActions;
}

void KrHvcGui::onContentPropertyAccepted()
{
    const QPointer<KrHvcGui> self(this);
    if (!contentWidget()->validateAndStore() || !self || !m_contentDialog)
        return;
    m_contentDialog->accept();
    saveContentDialogGeometory();
}

void KrHvcGui::onContentPropertyRejected()
{
    if (!m_contentDialog)
        return;
    m_contentDialog->reject();
    saveContentDialogGeometory();
}

void KrHvcGui::onScreenPropertyAccepted()
{
    const QPointer<KrHvcGui> self(this);
    if (screenWidget()->applyValues() && self && m_screenDialog)
        m_screenDialog->accept();
}

void KrHvcGui::onScreenPropertyRejected()
{
    if (m_screenDialog)
        m_screenDialog->reject();
}

void KrHvcGui::saveContentDialogGeometory()
{
    if (m_contentDialog)
        m_contentDialogGeometry = QRect(m_contentDialog->pos(), m_contentDialog->size());
}

void KrHvcGui::restoreContentDialogGoemetory()
{
    if (!m_contentDialog)
        return;
    m_contentDialog->move(m_contentDialogGeometry.topLeft());
    m_contentDialog->resize(m_contentDialogGeometry.size());
}

void KrHvcGui::onScreenValuesUpdated(int screenId, const QList<int> &seqIndexList)
{
    emit screenValuesUpdated(screenId, seqIndexList);
}

void KrHvcGui::onActionPluginPropertyTriggerd(bool /*checked*/)
{
    execScreenPropertyDialog(QRect());
}

void KrHvcGui::onActionAddContentTriggerd(bool /*checked*/)
{
    if (refuseFullScreen() || !contentWidget()->prepareNewContent())
        return;
    showContentDialog(tr("New HVC Detection Content"), QRect());
}

void KrHvcGui::onAddingContentsRequested(int screenId, const QMap<int, QVariant> &contents)
{
    emit requestAddContents(screenId, contents);
}

KrHvcContentPropertyWidget *KrHvcGui::contentWidget()
{
    if (!m_contentWidget) {
        m_contentWidget = new KrHvcContentPropertyWidget;
        m_contentWidget->setPluginData(pluginData());
        connect(m_contentWidget, &KrHvcContentPropertyWidget::screenValuesUpdated, this,
            &KrHvcGui::onScreenValuesUpdated);
        connect(m_contentWidget, &KrHvcContentPropertyWidget::requestAddContents, this,
            &KrHvcGui::onAddingContentsRequested);
    }
    return m_contentWidget;
}

KrHvcScreenPropertyWidget *KrHvcGui::screenWidget()
{
    if (!m_screenWidget) {
        m_screenWidget = new KrHvcScreenPropertyWidget;
        m_screenWidget->setPluginData(pluginData());
        connect(m_screenWidget, &KrHvcScreenPropertyWidget::screenValuesUpdated, this,
            &KrHvcGui::onScreenValuesUpdated);
    }
    return m_screenWidget;
}

QDialog *KrHvcGui::contentDialog()
{
    if (!m_contentDialog) {
        m_contentDialog = createDialog(contentWidget());
        const auto *buttons = m_contentDialog->findChild<QDialogButtonBox *>();
        connect(buttons, &QDialogButtonBox::accepted, this, &KrHvcGui::onContentPropertyAccepted);
        connect(buttons, &QDialogButtonBox::rejected, this, &KrHvcGui::onContentPropertyRejected);
    }
    return m_contentDialog;
}

QDialog *KrHvcGui::screenDialog()
{
    if (!m_screenDialog) {
        m_screenDialog = createDialog(screenWidget());
        m_screenDialog->setWindowTitle(tr("Human Vision Components Property"));
        const auto *buttons = m_screenDialog->findChild<QDialogButtonBox *>();
        connect(buttons, &QDialogButtonBox::accepted, this, &KrHvcGui::onScreenPropertyAccepted);
        connect(buttons, &QDialogButtonBox::rejected, this, &KrHvcGui::onScreenPropertyRejected);
    }
    return m_screenDialog;
}

/// True, with a message, when the screen has as many contents as it may have.
bool KrHvcGui::refuseFullScreen()
{
    const QVariant data = pluginData() != nullptr ? *pluginData() : QVariant();
    const int count = data.toMap().value(Kora::Keys::Contents).toList().size();
    const int maximum = maximumContentCount();
    if (count < maximum)
        return false;
    showMessageBox(m_contentDialog, QMessageBox::Critical, tr("Can Not Add Setting"),
        tr("You can not add new setting(content).\n"
           "The maximum setting(content) counts is %1.")
            .arg(maximum));
    return true;
}

void KrHvcGui::showContentDialog(const QString &title, const QRect &anchor)
{
    QDialog *dialog = contentDialog();
    dialog->setWindowTitle(title);
    placeDialog(dialog, anchor.isNull() ? cursorAnchor(QCursor::pos()) : anchor, ContentDialogRoom);
    forgetFocus(dialog);

    const QPointer<KrHvcGui> self(this);
    dialog->exec();
    if (self)
        saveContentDialogGeometory(); // also when it was closed by its window or by Escape
}

} // namespace PluginKrHvcP2
