#pragma once

#include "tools/hvcp2/Paint.h"

#include <QJsonObject>
#include <QString>
#include <QVector>

namespace Hvcp2 {

/// What was found out about one thing.
struct Finding
{
    enum Level { Ok, Warning, Error };

    Level level = Ok;
    QString subject; ///< a file or a key
    QString text; ///< what is so about it
    QString advice; ///< what to do; empty when all is fine
};

using Findings = QVector<Finding>;

bool isFine(const Findings &findings); ///< neither a warning nor an error

/// A paragraph for each finding and a line with the sum.
QString findingsText(const Findings &findings, const Paint &paint);
QJsonObject findingsJson(const Findings &findings);

} // namespace Hvcp2
