#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QList>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QStringList>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <utility>

namespace GuiTest {

/// Plays the user while modal loops run: one step for each dialog or message box to come.
///
/// Nothing hangs: a step that waits too long, and a modal window that no step is left for, are
/// noted as failures and every modal window is rejected.
class ModalDriver : public QObject
{
public:
    using Step = std::function<void(QDialog *)>;

    ModalDriver() { arm(); }

    /// Runs @p step when a dialog that is no message box is in front.
    void onDialog(Step step) { m_steps.append({false, std::move(step)}); }

    /// Notes the message box in front, runs @p step.
    void onBox(Step step) { m_steps.append({true, std::move(step)}); }

    /// Notes the message box in front and closes it with Return, its Ok.
    void confirmBox()
    {
        onBox([](QDialog *box) { QTest::keyClick(box, Qt::Key_Return); });
    }

    /// Every box that was noted: icon, title, text, buttons, class of the parent.
    QStringList boxes() const { return m_boxes; }

    /// What went wrong; empty when every step ran and nothing else showed up.
    QString failures() const
    {
        QStringList result = m_failures;
        if (!m_steps.isEmpty())
            result.append(QStringLiteral("%1 steps did not run").arg(m_steps.size()));
        return result.join(QLatin1Char('\n'));
    }

    static QString describeBox(const QString &icon, const QString &title, const QString &text,
        const QString &parent = QStringLiteral("PluginKrHvcP2::KrHvcContentPropertyWidget"))
    {
        return QStringList{icon, title, text, QStringLiteral("Ok"), parent}.join(QLatin1Char('|'));
    }

private:
    struct Expectation
    {
        bool box = false;
        Step step;
    };

    static constexpr qint64 TimeoutMs = 30000;

    // A new timer each time: one that is in its own slot does not run in the loops below it.
    void arm()
    {
        QTimer::singleShot(1, this, [this] { poll(); });
    }

    void poll()
    {
        arm();
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            m_waiting.invalidate();
            return;
        }
        if (!m_waiting.isValid())
            m_waiting.start();
        if (m_aborted || m_steps.isEmpty()) {
            if (!m_aborted)
                m_failures.append(QStringLiteral("nobody waits for ") + describe(dialog));
            dialog->reject();
            return;
        }
        auto *box = qobject_cast<QMessageBox *>(dialog);
        const bool isFitting = (box != nullptr) == m_steps.first().box;
        if (!isFitting || !dialog->isActiveWindow()) {
            if (m_waiting.hasExpired(TimeoutMs)) {
                m_failures.append(QStringLiteral("no step fits ") + describe(dialog));
                m_aborted = true;
            } else if (isFitting) {
                QApplication::setActiveWindow(dialog); // nobody else manages the windows
            }
            return;
        }
        m_waiting.invalidate();
        if (box != nullptr)
            m_boxes.append(describe(dialog));
        const Step step = m_steps.takeFirst().step;
        step(dialog);
    }

    static QString describe(const QDialog *dialog)
    {
        const auto *box = qobject_cast<const QMessageBox *>(dialog);
        if (box == nullptr)
            return QStringLiteral("dialog ") + dialog->windowTitle();
        QString icon;
        switch (box->icon()) {
        case QMessageBox::Critical:
            icon = QStringLiteral("critical");
            break;
        case QMessageBox::Warning:
            icon = QStringLiteral("warning");
            break;
        default:
            icon = QString::number(box->icon());
        }
        const QWidget *parent = box->parentWidget();
        return QStringList{icon, box->windowTitle(), box->text(),
            box->standardButtons() == QMessageBox::Ok ? QStringLiteral("Ok")
                                                      : QString::number(box->standardButtons()),
            parent != nullptr ? QString::fromLatin1(parent->metaObject()->className())
                              : QStringLiteral("none")}
            .join(QLatin1Char('|'));
    }

    QList<Expectation> m_steps;
    QStringList m_boxes;
    QStringList m_failures;
    QElapsedTimer m_waiting; // for the step that fits the window in front
    bool m_aborted = false;
};

inline void clickButton(const QDialog *dialog, QDialogButtonBox::StandardButton button)
{
    QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(button), Qt::LeftButton);
}

inline void clickCheckBox(QWidget *checkBox)
{
    QTest::mouseClick(checkBox, Qt::LeftButton, {}, QPoint(6, checkBox->height() / 2));
}

/// Replaces the value as a user does; the edit ends with the focus or with Return.
inline void typeValue(QSpinBox *spinBox, const QString &text)
{
    spinBox->setFocus();
    spinBox->selectAll();
    QTest::keyClicks(spinBox, text);
}

} // namespace GuiTest
