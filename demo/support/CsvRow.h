#pragma once

#include <QStringList>

namespace Demo {

/// The fields of one row of a table as RFC 4180 has them: parted by commas, quoted where they have
/// to be. Without the end of the line.
QString csvRow(const QStringList &fields);

} // namespace Demo
