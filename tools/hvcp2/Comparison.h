#pragma once

#include "tools/analysis/Decider.h"
#include "tools/analysis/Entry.h"
#include "tools/analysis/PlanOutcome.h"
#include "tools/hvcp2/Paint.h"

#include <QString>

#include <array>

class QJsonObject;

namespace Hvcp2 {

/// Two plans for the same audience.
class Comparison
{
public:
    Comparison(const Analysis::Plan &first, const Analysis::Plan &second);

    void add(const Analysis::Entry &entry); ///< what is no frame does not count
    QString toText(const Paint &paint) const;
    QJsonObject toJson() const; ///< "a" and "b"
    QString toCsv() const; ///< a row for each figure, with "a" and "b" beside each other

private:
    struct Side
    {
        explicit Side(const Analysis::Plan &given);

        Analysis::Plan plan;
        Analysis::Decider decider;
        Analysis::PlanOutcome outcome;
    };

    QString headText(const Paint &paint) const;
    QString figuresText(const Paint &paint) const;
    QString leftOutText(const Paint &paint) const;
    QString contentsCsv() const;
    QString leftOutCsv() const;
    static QString contentsText(const Side &side, const Paint &paint);
    static QJsonObject toJson(const Side &side);

    std::array<Side, 2> m_sides;
    bool m_hasWholeSeconds = false; // some frames have no finer time
};

} // namespace Hvcp2
