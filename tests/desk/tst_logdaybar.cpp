#include "demo/desk/LogDayBar.h"
#include "demo/desk/LogPlayhead.h"
#include "tests/desk/LogText.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

using namespace Desk;
using namespace DeskTest;

/// A bar for two hours: a frame at 09:30, two at 10:00, one at 11:30.
class tst_LogDayBar : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void timesOfDay_data();
    void timesOfDay();
    void whileReading();
    void withoutFrames();
    void shownFrame();
    void slider();
    void keys_data();
    void keys();
    void buttons();
    void speed();
    void timeField_data();
    void timeField();

private:
    template <typename T>
    T *find(const char *name) const
    {
        return m_bar->findChild<T *>(QLatin1String(name));
    }
    QString time() const { return find<QLabel>("logTime")->text(); }

    QTemporaryDir m_directory;
    std::unique_ptr<LogDay> m_day;
    std::unique_ptr<LogPlayhead> m_playhead;
    std::unique_ptr<LogDayBar> m_bar;
};

void tst_LogDayBar::init()
{
    m_day = readDay(m_directory.filePath(QStringLiteral("log.txt")),
        logOf(QStringLiteral("09:30:00, 10:00:00, 10:00:01, 11:30:00")));
    QVERIFY(m_day);
    m_playhead = std::make_unique<LogPlayhead>();
    m_bar = std::make_unique<LogDayBar>(m_playhead.get());
    m_playhead->setDay(m_day.get());
    m_bar->showReading(100);
    m_playhead->showFrame(1);
    m_bar->resize(1000, m_bar->sizeHint().height());
    m_bar->show();
    m_bar->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_bar.get()));
    m_bar->setFocus();
}

void tst_LogDayBar::cleanup()
{
    m_bar.reset();
    m_playhead.reset();
    m_day.reset();
}

void tst_LogDayBar::timesOfDay_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QTime>("time");

    QTest::newRow("hours and minutes") << "09:30" << QTime(9, 30);
    QTest::newRow("one digit") << "9:30" << QTime(9, 30);
    QTest::newRow("with seconds") << " 21:05:07 " << QTime(21, 5, 7);
    QTest::newRow("no such time") << "24:00" << QTime();
    QTest::newRow("half of one") << "9" << QTime();
    QTest::newRow("a word") << "noon" << QTime();
    QTest::newRow("nothing") << "" << QTime();
}

void tst_LogDayBar::timesOfDay()
{
    QFETCH(QString, text);
    QFETCH(QTime, time);

    QCOMPARE(timeOfDay(text), time);
}

void tst_LogDayBar::whileReading()
{
    m_bar->showReading(43);
    QCOMPARE(time(), QStringLiteral("Reading the log: 43 %"));
    QVERIFY(!find<QSlider>("logSlider")->isEnabled());
    QVERIFY(!find<QLineEdit>("logGoTo")->isEnabled());
    m_bar->showReading(100);
    QCOMPARE(time(), QStringLiteral("2018-02-01 09:30:00"));
    QVERIFY(find<QSlider>("logSlider")->isEnabled());
}

void tst_LogDayBar::withoutFrames()
{
    m_playhead->setDay(nullptr);
    m_bar->showReading(100);
    QCOMPARE(time(), QStringLiteral("There is no frame in this log."));
    QTest::keyClick(m_bar.get(), Qt::Key_Space);
    QTest::mouseClick(find<QToolButton>("logNext"), Qt::LeftButton);
    QCOMPARE(m_playhead->number(), qint64{0});
}

void tst_LogDayBar::shownFrame()
{
    m_playhead->showFrame(3);
    QCOMPARE(time(), QStringLiteral("2018-02-01 10:00:01"));
    QCOMPARE(m_bar->accessibleDescription(), time());
    QCOMPARE(find<QLabel>("logTime")->toolTip(), QStringLiteral("Frame 3 of 4"));
    QCOMPARE(find<QSlider>("logSlider")->value(), 1801);
    QCOMPARE(find<QSlider>("logSlider")->maximum(), 7200);
    QCOMPARE(m_playhead->number(), qint64{3}); // and not what the slider might make of it
}

void tst_LogDayBar::slider()
{
    auto *const slider = find<QSlider>("logSlider");
    QTest::mouseClick(slider, Qt::LeftButton, {}, {slider->width() / 2, slider->height() / 2});
    QCOMPARE(m_playhead->number(), qint64{3}); // an hour behind the first one
    QTest::mousePress(slider, Qt::LeftButton, {}, {slider->width() / 8, slider->height() / 2});
    QCOMPARE(m_playhead->number(), qint64{1});
    QVERIFY(slider->value() > 700); // stays where it was put
    const QPoint end(slider->width() - 2, slider->height() / 2);
    QMouseEvent move(QEvent::MouseMove, end, slider->mapToGlobal(end), Qt::NoButton, Qt::LeftButton,
        Qt::NoModifier);
    QCoreApplication::sendEvent(slider, &move);
    QCOMPARE(m_playhead->number(), qint64{4});
    QTest::mouseRelease(slider, Qt::LeftButton, {}, end);
}

void tst_LogDayBar::keys_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<qint64>("number");

    QTest::newRow("right") << 2 << Qt::Key_Right << qint64{3};
    QTest::newRow("left") << 2 << Qt::Key_Left << qint64{1};
    QTest::newRow("page down") << 2 << Qt::Key_PageDown << qint64{3};
    QTest::newRow("page up") << 4 << Qt::Key_PageUp << qint64{3};
    QTest::newRow("home") << 3 << Qt::Key_Home << qint64{1};
    QTest::newRow("end") << 3 << Qt::Key_End << qint64{4};
    QTest::newRow("none of its keys") << 3 << Qt::Key_X << qint64{3};
}

void tst_LogDayBar::keys()
{
    QFETCH(int, from);
    QFETCH(Qt::Key, key);
    QFETCH(qint64, number);

    m_playhead->showFrame(from);
    QTest::keyClick(m_bar.get(), key);
    QCOMPARE(m_playhead->number(), number);
}

void tst_LogDayBar::buttons()
{
    QTest::mouseClick(find<QToolButton>("logNext"), Qt::LeftButton);
    QCOMPARE(m_playhead->number(), qint64{2});
    QTest::mouseClick(find<QToolButton>("logBack"), Qt::LeftButton);
    QCOMPARE(m_playhead->number(), qint64{1});
    auto *const play = find<QToolButton>("logPlay");
    QCOMPARE(play->text(), QStringLiteral("Play"));
    QTest::mouseClick(play, Qt::LeftButton);
    QVERIFY(m_playhead->isPlaying());
    QCOMPARE(play->text(), QStringLiteral("Pause"));
    QTest::keyClick(m_bar.get(), Qt::Key_Space);
    QVERIFY(!m_playhead->isPlaying());
    QCOMPARE(play->text(), QStringLiteral("Play"));
}

void tst_LogDayBar::speed()
{
    auto *const speed = find<QComboBox>("logSpeed");
    QStringList speeds;
    for (int i = 0; i < speed->count(); ++i) {
        speed->setCurrentIndex(i);
        speeds << QStringLiteral("%1 %2").arg(
            speed->currentText(), QString::number(m_playhead->speed()));
    }
    QCOMPARE(speeds,
        QStringList({QStringLiteral("1x 1"), QStringLiteral("10x 10"), QStringLiteral("60x 60")}));
}

void tst_LogDayBar::timeField_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("left"); // in the field

    QTest::newRow("a time") << "10:00" << qint64{2} << "";
    QTest::newRow("with seconds") << "10:00:01" << qint64{3} << "";
    QTest::newRow("no time") << "25:00" << qint64{1} << "25:00";
}

void tst_LogDayBar::timeField()
{
    QFETCH(QString, typed);
    QFETCH(qint64, number);
    QFETCH(QString, left);

    auto *const field = find<QLineEdit>("logGoTo");
    QTest::keyClick(m_bar.get(), Qt::Key_G, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget(), field);
    QTest::keyClicks(field, typed);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(m_playhead->number(), number);
    QCOMPARE(field->text(), left);
    QCOMPARE(QApplication::focusWidget() == field, !left.isEmpty());
}

QTEST_MAIN(tst_LogDayBar)

#include "tst_logdaybar.moc"
