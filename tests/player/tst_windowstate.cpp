#include "demo/player/WindowState.h"

#include "demo/player/MainWindow.h"
#include "demo/player/StagePlayer.h"
#include "tests/support/Files.h"

#include <QAction>
#include <QSplitter>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Player;

class tst_WindowState : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void remembered();
    void largeIsNotRemembered();
    void nothingOfUse_data();
    void nothingOfUse();
    void defaultFile();

private:
    static constexpr QSize Size{1300, 720};

    QString file() const { return m_directory->filePath(QStringLiteral("folder/window.ini")); }
    static QSplitter *parts(const MainWindow &window)
    {
        return window.findChild<QSplitter *>(QStringLiteral("parts"));
    }
    static void show(MainWindow *window)
    {
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
    }

    std::unique_ptr<QTemporaryDir> m_directory; // of the current test
    std::unique_ptr<StagePlayer> m_player;
};

void tst_WindowState::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QString error;
    const auto stage = Stage::StageFile::fromJson(
        R"({"screens": [{"id": 1, "contents": []}]})", QStringLiteral("s.json"), &error);
    QVERIFY2(stage, qUtf8Printable(error));
    m_player = std::make_unique<StagePlayer>(*stage, 1);
}

void tst_WindowState::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
}

void tst_WindowState::remembered()
{
    QList<int> sizes;
    {
        MainWindow window(m_player.get());
        show(&window);
        window.resize(Size);
        parts(window)->setSizes({700, 600});
        sizes = parts(window)->sizes();
        WindowState::save(&window, file());
    }
    MainWindow window(m_player.get());
    WindowState::restore(&window, file());
    show(&window);
    QTRY_COMPARE(window.size(), Size);
    QTRY_COMPARE(parts(window)->sizes(), sizes);
    QVERIFY(qAbs(sizes.at(0) - 700) < 20);
}

/// The window that comes next would have no stage.
void tst_WindowState::largeIsNotRemembered()
{
    QList<int> sizes;
    {
        MainWindow window(m_player.get());
        connect(&window, &MainWindow::closed, &window, [&] { WindowState::save(&window, file()); });
        show(&window);
        parts(window)->setSizes({700, 600});
        sizes = parts(window)->sizes();
        window.findChild<QAction *>(QStringLiteral("large"))->trigger();
        QTRY_COMPARE(parts(window)->sizes().at(0), 0);
        window.close();
    }
    MainWindow window(m_player.get());
    WindowState::restore(&window, file());
    show(&window);
    QTRY_COMPARE(parts(window)->sizes(), sizes);
}

void tst_WindowState::nothingOfUse_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no INI file") << QByteArray("\0\1\2\3[[[\n=\n", 10);
    QTest::newRow("other values") << QByteArray("[window]\ngeometry=wide\nstate=17\n"
                                                "[splitter]\nparts=@ByteArray(\\0\\0)\n");
}

void tst_WindowState::nothingOfUse()
{
    QFETCH(QByteArray, content);

    const QString name = m_directory->filePath(QStringLiteral("window.ini"));
    QVERIFY(KrTest::writeFile(name, content));
    MainWindow usual(m_player.get());
    MainWindow window(m_player.get());
    WindowState::restore(&window, name);
    WindowState::restore(&window, file()); // there is none
    WindowState::restore(&window, m_directory->path());
    WindowState::save(&window, m_directory->path());
    QCOMPARE(window.size(), usual.size());
    QVERIFY(QFileInfo(m_directory->path()).isDir());
}

void tst_WindowState::defaultFile()
{
    const QString name = WindowState::defaultFile();
    QVERIFY(QDir::isAbsolutePath(name));
    QCOMPARE(QFileInfo(name).fileName(), QStringLiteral("window.ini"));
}

QTEST_MAIN(tst_WindowState)

#include "tst_windowstate.moc"
