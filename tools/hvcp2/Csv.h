#pragma once

#include <QString>
#include <QStringList>

namespace Hvcp2 {

/// A line of a table for spreadsheets, with its end: printable cells, quoted where there is a comma
/// or a quotation mark in them.
QString csvLine(const QStringList &cells);
QString csvNumber(double number); ///< with a point, whatever the language

} // namespace Hvcp2
