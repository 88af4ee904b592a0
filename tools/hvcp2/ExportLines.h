#pragma once

#include "detection/SensorOutputParser.h"
#include "tools/analysis/Decider.h"
#include "tools/analysis/Entry.h"
#include "tools/analysis/Plan.h"

#include <QJsonObject>
#include <QVector>

#include <optional>

namespace Hvcp2 {

/// Makes records for a database of what entries tell: one for each frame, face, decision, request
/// that was held back, process event and error.
///
/// Each has an "id" of the screen, the name of the file without its folder and the place in it, so
/// that the same thing has the same one whenever it is read.
class ExportLines
{
public:
    /// With a @p plan what a recording does not tell is decided by it. @p screen is part of the
    /// ids; nothing: it is not known.
    ExportLines(const std::optional<Analysis::Plan> &plan, std::optional<int> screen);

    /// In an order in which each comes behind what it refers to.
    QVector<QJsonObject> linesOf(const Analysis::Entry &entry);

private:
    QString idOf(const Analysis::Position &position) const;
    QJsonObject newLine(const Analysis::Entry &entry, const char *type, const QString &part) const;
    void addFrame(const Analysis::Entry &entry, QVector<QJsonObject> *lines);
    void addFailures(const Analysis::Entry &entry, QVector<QJsonObject> *lines) const;
    void addDecision(const Analysis::Entry &entry, const PluginKrHvcP2::SensorFrame &frame,
        QVector<QJsonObject> *lines);

    std::optional<int> m_screen;
    int m_limitMs = 0; // with a plan
    std::optional<Analysis::Decider> m_decider; // likewise
};

} // namespace Hvcp2
