#pragma once

#include <QString>
#include <QStringList>

namespace Analysis {

/// The sensor program's lines out of the text of a log record, which has label and value of a row
/// in two lines; a text with tabs has its lines whole and is returned as it is.
///
/// What the sensor program prints comes back with the same faces. End prompts have no row; each is
/// put back where the next face count follows. Of damaged lines the log keeps less than the plug-in
/// saw:
/// - a "Gender" line without a value ends a face; its row is as empty as that of any word alone, so
///   that the face is lost, or goes on in the next one;
/// - so does a face in front of an end prompt that no face count follows, and one that was lost in
///   front of a face count without prompt;
/// - in the values of age and gender what was not understood has lost the blank behind it, and what
///   follows its label: "Age:x Age:30", "Age:30 * Confidence:300"; a '*' behind a second tab is
///   gone;
/// - what HTML takes for a tag, an entity or a blank: "<", "&amp;", a no-break space.
QString sensorLines(const QString &report);

/// Those of @p lines, which are as SensorOutputParser::parse() takes them, that report a failure.
QStringList failuresIn(const QString &lines);

} // namespace Analysis
