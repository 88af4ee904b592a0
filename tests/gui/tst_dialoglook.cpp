#include "GuiTestData.h"
#include "ModalDriver.h"

#include "gui/KrHvcGui.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCursor>
#include <QLineEdit>
#include <QPalette>

#include <memory>

using namespace GuiTest;
using namespace PluginKrHvcP2;

namespace {

/// The widgets inside @p dialog that get less room than they need to show all of their text.
QStringList cutWidgets(const QDialog *dialog)
{
    QStringList result;
    const QList<QWidget *> widgets = dialog->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        const bool isOfInterest = label != nullptr || qobject_cast<const QAbstractButton *>(widget)
            || qobject_cast<const QAbstractSpinBox *>(widget)
            || qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLineEdit *>(widget);
        const bool isPart = widget->objectName().startsWith(QLatin1String("qt_"));
        if (!isOfInterest || isPart || !widget->isVisible())
            continue;
        QSize needed = label != nullptr ? label->sizeHint() : widget->minimumSizeHint();
        if (label != nullptr && label->wordWrap())
            needed = QSize(label->minimumSizeHint().width(), label->heightForWidth(label->width()));
        const QRect place(widget->mapTo(dialog, QPoint()), widget->size());
        if (widget->width() < needed.width() || widget->height() < needed.height()
            || !dialog->rect().contains(place)) {
            result.append("%1 has %2x%3 of %4x%5"_s.arg(describeWidget(widget))
                              .arg(widget->width())
                              .arg(widget->height())
                              .arg(needed.width())
                              .arg(needed.height()));
        }
    }
    return result;
}

} // namespace

/// Run at 100 % and at 200 %: the scale belongs to the process.
class tst_DialogLook : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void everythingIsShown_data();
    void everythingIsShown();
    void textsFollowADarkPalette();
    void tabWalksFromTopToBottom_data();
    void tabWalksFromTopToBottom();

private:
    void open(const QString &what) const
    {
        if (what == "add"_s)
            m_gui->addContentActions().first()->trigger();
        else if (what == "edit"_s)
            m_gui->execContentPropertyDialog(0, QRect());
        else if (what == "screen"_s)
            m_gui->execScreenPropertyDialog(QRect());
        else
            m_gui->execScreenPropertyDialog(QRect(100, 400, 20, 20));
    }

    QFont m_font = QApplication::font();
    QPalette m_palette = QApplication::palette();
    std::unique_ptr<KrHvcGui> m_gui;
    QVariant m_pluginData;
};

void tst_DialogLook::init()
{
    m_pluginData = screen({content("20 - 30 years old (Female)"_s, 20, 30, "female"_s, "true"_s)});
    m_gui = std::make_unique<KrHvcGui>();
    m_gui->setPluginData(&m_pluginData);
    QCursor::setPos(200, 200);
}

void tst_DialogLook::cleanup()
{
    m_gui.reset();
    const QWidgetList left = QApplication::topLevelWidgets();
    for (QWidget *widget : left) {
        if (widget->parentWidget() == nullptr)
            delete widget;
    }
    QApplication::setFont(m_font);
    QApplication::setPalette(m_palette);
}

void tst_DialogLook::everythingIsShown_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<int>("fontPercent");

    for (const int percent : {100, 200}) {
        const auto row = [percent](const char *name) -> QTestData & {
            return QTest::addRow("%s, text at %d %%", name, percent);
        };
        row("new content") << "add"_s << percent;
        row("edited content") << "edit"_s << percent;
        row("screen without an anchor") << "screen"_s << percent;
        row("screen beside an anchor") << "screen at anchor"_s << percent;
    }
}

void tst_DialogLook::everythingIsShown()
{
    QFETCH(QString, what);
    QFETCH(int, fontPercent);
    QFont font = m_font;
    font.setPointSizeF(font.pointSizeF() * fontPercent / 100);
    QApplication::setFont(font);

    ModalDriver driver;
    QStringList cut{"not opened"_s};
    driver.onDialog([&](QDialog *dialog) {
        cut = cutWidgets(dialog);
        dialog->reject();
    });
    open(what);
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(cut.join(QLatin1Char('\n')), QString());
}

void tst_DialogLook::textsFollowADarkPalette()
{
    QPalette dark;
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(dark);
    for (const QString &what : {"edit"_s, "screen"_s}) {
        ModalDriver driver;
        int checked = 0;
        driver.onDialog([&](QDialog *dialog) {
            const QList<QLabel *> labels = dialog->findChildren<QLabel *>();
            for (const QLabel *label : labels) {
                if (!label->styleSheet().isEmpty())
                    continue; // these colours are fixed
                QCOMPARE(label->palette().color(QPalette::WindowText), QColor(Qt::white));
                ++checked;
            }
            dialog->reject();
        });
        open(what);
        QCOMPARE(driver.failures(), QString());
        QVERIFY(checked > 3);
    }
}

void tst_DialogLook::tabWalksFromTopToBottom_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("content dialog") << "edit"_s
                                    << QStringList{"name"_s, "auto"_s, "ageMin"_s, "ageMax"_s,
                                           "findRange"_s, "gender"_s, "default"_s};
    QTest::newRow("screen dialog")
        << "screen"_s
        << QStringList{"interval"_s, "faceDetectionConfidence"_s, "faceDirectionConfidence"_s,
               "ageConfidence"_s, "genderConfidence"_s, "concurrent"_s, "eventRestriction"_s,
               "visibleMonitoring"_s};
}

void tst_DialogLook::tabWalksFromTopToBottom()
{
    QFETCH(QString, what);
    QFETCH(QStringList, expected);
    QStringList visited;
    int buttons = 0;
    bool isBack = false;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        dialog->findChild<QWidget *>(expected.first())->setFocus();
        const QWidget *first = dialog->focusWidget();
        for (int i = 0; i < expected.size() + 2; ++i) {
            QWidget *current = dialog->focusWidget();
            if (qobject_cast<QDialogButtonBox *>(current->parentWidget()) != nullptr)
                ++buttons;
            else
                visited.append(current->objectName());
            QTest::keyClick(current, Qt::Key_Tab);
        }
        isBack = dialog->focusWidget() == first;
        dialog->reject();
    });
    open(what);
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(visited, expected);
    QCOMPARE(buttons, 2);
    QVERIFY(isBack);
}

QTEST_MAIN(tst_DialogLook)
#include "tst_dialoglook.moc"
