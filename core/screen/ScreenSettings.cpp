#include "core/screen/ScreenSettings.h"

#include "host/KrPluginKeys.h"

#include <QXmlStreamWriter>

#include <limits>

namespace PluginKrHvcP2 {

namespace Keys = Kora::Keys;

namespace {

struct IntegerSetting
{
    const QString &key;
    int ScreenSettings::*member;
    int minimum;
    int maximum;
    int storedDefault;
};

// In the order in which they are written.
const QVector<IntegerSetting> &integerSettings()
{
    constexpr int noLimit = std::numeric_limits<int>::max();
    static const QVector<IntegerSetting> settings{
        {Keys::Interval, &ScreenSettings::interval, 0, 60000, 500},
        {Keys::FaceDetectionConfidence, &ScreenSettings::faceDetectionConfidence, 0, 1000, 0},
        {Keys::FaceDirectionConfidence, &ScreenSettings::faceDirectionConfidence, 0, 1000, 0},
        {Keys::AgeConfidence, &ScreenSettings::ageConfidence, 0, 1000, 0},
        {Keys::GenderConfidence, &ScreenSettings::genderConfidence, 0, 1000, 0},
        {Keys::Concurrent, &ScreenSettings::concurrent, 1, 20, 1},
        {Keys::EventSendingLimit, &ScreenSettings::eventSendingLimit, 0, noLimit, 5000},
    };
    return settings;
}

QString booleanText(bool value)
{
    return value ? Keys::True : Keys::False;
}

} // namespace

bool isTrueText(const QVariant &value)
{
    return value.toString().compare(Keys::True, Qt::CaseInsensitive) == 0;
}

ScreenSettings ScreenSettings::fromStored(const QVariantMap &settings)
{
    ScreenSettings result;
    result.displayMonitoring = isTrueText(settings.value(Keys::DisplayMonitoring, Keys::False));
    for (const IntegerSetting &setting : integerSettings())
        result.*setting.member = settings.value(setting.key, setting.storedDefault).toInt();
    return result;
}

QVariantMap ScreenSettings::newScreenMap()
{
    return {
        {Keys::DisplayMonitoring, false},
        {Keys::Interval, 1000},
        {Keys::FaceDetectionConfidence, 0},
        {Keys::FaceDirectionConfidence, 0},
        {Keys::AgeConfidence, 0},
        {Keys::GenderConfidence, 0},
        {Keys::Concurrent, 1},
    };
}

void ScreenSettings::update(const QVariantMap &params)
{
    for (auto it = params.cbegin(); it != params.cend(); ++it) {
        if (it.key().compare(Keys::DisplayMonitoring, Qt::CaseInsensitive) == 0) {
            displayMonitoring = isTrueText(it.value());
            continue;
        }
        for (const IntegerSetting &setting : integerSettings()) {
            if (it.key().compare(setting.key, Qt::CaseInsensitive) != 0)
                continue;
            bool ok = false;
            const int value = it.value().toInt(&ok);
            if (ok && value >= setting.minimum && value <= setting.maximum)
                this->*setting.member = value;
            break;
        }
    }
}

QVariantMap ScreenSettings::toMap() const
{
    QVariantMap map{{Keys::DisplayMonitoring, displayMonitoring}};
    for (const IntegerSetting &setting : integerSettings())
        map.insert(setting.key, this->*setting.member);
    return map;
}

void ScreenSettings::writeXml(QXmlStreamWriter &writer) const
{
    writer.writeStartElement(Keys::PluginData);
    writer.writeAttribute(Keys::DisplayMonitoring, booleanText(displayMonitoring));
    for (const IntegerSetting &setting : integerSettings())
        writer.writeAttribute(setting.key, QString::number(this->*setting.member));
    writer.writeEndElement();
}

} // namespace PluginKrHvcP2
