#include "host/KrPluginKeys.h"

#include <QtTest>

namespace Keys = Kora::Keys;

class tst_Keys : public QObject
{
    Q_OBJECT

private slots:
    void text_data();
    void text();
};

void tst_Keys::text_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");

    QTest::newRow("plug-in data") << Keys::PluginData << QStringLiteral("plugindata");
    QTest::newRow("contents") << Keys::Contents << QStringLiteral("contents");
    QTest::newRow("id") << Keys::Id << QStringLiteral("id");
    QTest::newRow("name") << Keys::Name << QStringLiteral("name");
    QTest::newRow("lowest age") << Keys::AgeMin << QStringLiteral("age-min");
    QTest::newRow("highest age") << Keys::AgeMax << QStringLiteral("age-max");
    QTest::newRow("gender") << Keys::Gender << QStringLiteral("gender");
    QTest::newRow("default") << Keys::Default << QStringLiteral("default");
    QTest::newRow("interval") << Keys::Interval << QStringLiteral("interval");
    QTest::newRow("detection confidence")
        << Keys::FaceDetectionConfidence << QStringLiteral("face-detection-confidence");
    QTest::newRow("direction confidence")
        << Keys::FaceDirectionConfidence << QStringLiteral("face-direction-confidence");
    QTest::newRow("age confidence") << Keys::AgeConfidence << QStringLiteral("age-confidence");
    QTest::newRow("gender confidence")
        << Keys::GenderConfidence << QStringLiteral("gender-confidence");
    QTest::newRow("concurrent") << Keys::Concurrent << QStringLiteral("concurrent");
    QTest::newRow("event sending limit")
        << Keys::EventSendingLimit << QStringLiteral("event-sending-limit");
    QTest::newRow("display monitoring")
        << Keys::DisplayMonitoring << QStringLiteral("display-monitoring");
    QTest::newRow("both") << Keys::Both << QStringLiteral("both");
    QTest::newRow("female") << Keys::Female << QStringLiteral("female");
    QTest::newRow("male") << Keys::Male << QStringLiteral("male");
    QTest::newRow("true") << Keys::True << QStringLiteral("true");
    QTest::newRow("false") << Keys::False << QStringLiteral("false");
    QTest::newRow("param") << Keys::Param << QStringLiteral("param");
    QTest::newRow("value") << Keys::Value << QStringLiteral("value");
}

void tst_Keys::text()
{
    QFETCH(QString, key);
    QFETCH(QString, expected);
    QCOMPARE(key, expected);
}

QTEST_GUILESS_MAIN(tst_Keys)

#include "tst_keys.moc"
