// Hands every file of a target's folder to the target: the seeds, and what was once found.

#include "tests/fuzz/Target.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QtTest>

class tst_Replay : public QObject
{
    Q_OBJECT

private slots:
    void replay_data();
    void replay();
};

void tst_Replay::replay_data()
{
    QTest::addColumn<QByteArray>("input");

    QTest::newRow("nothing") << QByteArray();
    const QDir directory(QStringLiteral(KRHVC_FUZZ_INPUTS));
    const QStringList names = directory.entryList(QDir::Files);
    QVERIFY2(!names.isEmpty(), KRHVC_FUZZ_INPUTS);
    for (const QString &name : names)
        QTest::newRow(qUtf8Printable(name)) << KrTest::readFile(directory.filePath(name));
}

void tst_Replay::replay()
{
    QFETCH(QByteArray, input);
    const auto *const bytes = reinterpret_cast<const std::uint8_t *>(input.constData());
    QCOMPARE(LLVMFuzzerTestOneInput(bytes, static_cast<std::size_t>(input.size())), 0);
}

QTEST_MAIN(tst_Replay)

#include "Replay.moc"
