#include "core/screen/ScreenSettings.h"

#include "host/KrPluginKeys.h"

#include <QXmlStreamWriter>

namespace PluginKrHvcP2 {

namespace Keys = Kora::Keys;

namespace {

struct IntegerSetting
{
    const QString &key;
    int ScreenSettings::*member;
    IntegerRange accepted; // from the host
};

// In the order in which they are written.
const QVector<IntegerSetting> &integerSettings()
{
    static const QVector<IntegerSetting> settings{
        {Keys::Interval, &ScreenSettings::interval, AcceptedInterval},
        {Keys::FaceDetectionConfidence, &ScreenSettings::faceDetectionConfidence, ConfidenceRange},
        {Keys::FaceDirectionConfidence, &ScreenSettings::faceDirectionConfidence, ConfidenceRange},
        {Keys::AgeConfidence, &ScreenSettings::ageConfidence, ConfidenceRange},
        {Keys::GenderConfidence, &ScreenSettings::genderConfidence, ConfidenceRange},
        {Keys::Concurrent, &ScreenSettings::concurrent, ConcurrentRange},
        {Keys::EventSendingLimit, &ScreenSettings::eventSendingLimit, AcceptedEventSendingLimit},
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
    for (const IntegerSetting &setting : integerSettings()) {
        int &member = result.*setting.member;
        member = settings.value(setting.key, member).toInt();
    }
    return result;
}

ScreenSettings ScreenSettings::ofNewScreen()
{
    ScreenSettings settings;
    settings.interval = 1000;
    return settings;
}

QVariantMap ScreenSettings::newScreenMap()
{
    QVariantMap map = ofNewScreen().toMap();
    map.remove(Keys::EventSendingLimit);
    return map;
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
            if (ok && setting.accepted.contains(value))
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

std::optional<QVariantMap> editedSettings(const QVariantMap &stored, const ScreenSettings &entered)
{
    QVariantMap edited = stored;
    bool changed = false;
    for (const IntegerSetting &setting : integerSettings()) {
        const int value = entered.*setting.member;
        if (stored.contains(setting.key) && stored.value(setting.key).toInt() == value)
            continue;
        edited.insert(setting.key, value);
        changed = true;
    }
    if (isTrueText(stored.value(Keys::DisplayMonitoring)) != entered.displayMonitoring) {
        edited.insert(Keys::DisplayMonitoring, booleanText(entered.displayMonitoring));
        changed = true;
    }
    return changed ? std::optional<QVariantMap>(edited) : std::nullopt;
}

} // namespace PluginKrHvcP2
