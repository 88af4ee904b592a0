#pragma once

#include "core/screen/IntegerRange.h"

#include <QVariantMap>

#include <limits>
#include <optional>

class QXmlStreamWriter;

namespace PluginKrHvcP2 {

/// A boolean as the maps store it: true exactly for the text "true" in any letter case.
bool isTrueText(const QVariant &value);

// What a host may set and what people may enter differs for some settings, both on purpose.
constexpr IntegerRange AcceptedInterval{0, 60000}; ///< from the host, milliseconds
constexpr IntegerRange EditableInterval{10, 360000}; ///< in the dialog, milliseconds
constexpr IntegerRange ConfidenceRange{0, 1000}; ///< from the host and in the dialog
constexpr IntegerRange ConcurrentRange{1, 20}; ///< from the host and in the dialog
/// From the host, milliseconds.
constexpr IntegerRange AcceptedEventSendingLimit{0, std::numeric_limits<int>::max()};
constexpr IntegerRange EditableEventSendingLimit{0, 86400000}; ///< in the dialog: up to a day

/// The settings of one screen, as they stand under "plugindata" in its parameter map.
///
/// The defaults of the members also stand for what is missing in a map that is read.
struct ScreenSettings
{
    bool displayMonitoring = false; ///< show the panel
    int interval = 500; ///< of the sensor data, milliseconds
    int faceDetectionConfidence = 0; ///< the confidences are carried, not applied
    int faceDirectionConfidence = 0;
    int ageConfidence = 0;
    int genderConfidence = 0;
    int concurrent = 1; ///< sequences requested for one frame at most
    int eventSendingLimit = 5000; ///< restriction time, milliseconds

    /// The settings stored in @p settings, as an edit has left them: without range checks,
    /// defaults for missing keys.
    static ScreenSettings fromStored(const QVariantMap &settings);

    /// The settings of a new screen, which the dialog also shows until it has loaded others.
    static ScreenSettings ofNewScreen();

    /// The settings that a new screen is stored with, without "event-sending-limit".
    static QVariantMap newScreenMap();

    /// Takes over what converts and lies in range, ignores the rest. Keys match in any letter case.
    void update(const QVariantMap &params);

    QVariantMap toMap() const;
    void writeXml(QXmlStreamWriter &writer) const; ///< one element "plugindata"
};

/// The map @p stored when it is left with @p entered in the dialog: what says the same already
/// stays as it is, foreign keys as well. Nothing when there is no change. A number that is missing
/// is a change, a switch that is missing is off.
std::optional<QVariantMap> editedSettings(const QVariantMap &stored, const ScreenSettings &entered);

} // namespace PluginKrHvcP2
