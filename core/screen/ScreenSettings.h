#pragma once

#include <QVariantMap>

class QXmlStreamWriter;

namespace PluginKrHvcP2 {

/// A boolean as the maps store it: true exactly for the text "true" in any letter case.
bool isTrueText(const QVariant &value);

/// The settings of one screen, as they stand under "plugindata" in its parameter map.
struct ScreenSettings
{
    bool displayMonitoring = false; ///< show the panel
    int interval = 500; ///< of the sensor data, milliseconds
    int faceDetectionConfidence = 0; ///< 0 to 1000; the confidences are carried, not applied
    int faceDirectionConfidence = 0; ///< 0 to 1000
    int ageConfidence = 0; ///< 0 to 1000
    int genderConfidence = 0; ///< 0 to 1000
    int concurrent = 1; ///< sequences requested for one frame at most, 1 to 20
    int eventSendingLimit = 5000; ///< restriction time, milliseconds

    /// The settings stored in @p settings, as an edit has left them: without range checks,
    /// defaults for missing keys.
    static ScreenSettings fromStored(const QVariantMap &settings);

    /// The settings that a new screen is stored with, without "event-sending-limit".
    static QVariantMap newScreenMap();

    /// Takes over what converts and lies in range, ignores the rest. Keys match in any letter case.
    void update(const QVariantMap &params);

    QVariantMap toMap() const;
    void writeXml(QXmlStreamWriter &writer) const; ///< one element "plugindata"
};

} // namespace PluginKrHvcP2
