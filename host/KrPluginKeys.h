#pragma once

#include <QString>

/// Keys and key words of a screen's parameter map. Written in lower case, matched ignoring case.
namespace Kora::Keys {

inline const QString PluginData = QStringLiteral("plugindata");
inline const QString Contents = QStringLiteral("contents");
inline const QString Id = QStringLiteral("id");
inline const QString Name = QStringLiteral("name");
inline const QString AgeMin = QStringLiteral("age-min");
inline const QString AgeMax = QStringLiteral("age-max");
inline const QString Gender = QStringLiteral("gender");
inline const QString Default = QStringLiteral("default");
inline const QString Interval = QStringLiteral("interval");
inline const QString FaceDetectionConfidence = QStringLiteral("face-detection-confidence");
inline const QString FaceDirectionConfidence = QStringLiteral("face-direction-confidence");
inline const QString AgeConfidence = QStringLiteral("age-confidence");
inline const QString GenderConfidence = QStringLiteral("gender-confidence");
inline const QString Concurrent = QStringLiteral("concurrent");
inline const QString EventSendingLimit = QStringLiteral("event-sending-limit");
inline const QString DisplayMonitoring = QStringLiteral("display-monitoring");
inline const QString Both = QStringLiteral("both");
inline const QString Female = QStringLiteral("female");
inline const QString Male = QStringLiteral("male");
inline const QString True = QStringLiteral("true");
inline const QString False = QStringLiteral("false");
inline const QString Param = QStringLiteral("param"); // for hosts; no operation here uses it
inline const QString Value = QStringLiteral("value"); // for hosts; no operation here uses it

} // namespace Kora::Keys
