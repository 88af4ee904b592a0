#pragma once

#include <QByteArray>
#include <QVariant>

/// Maps and lists of values of all types from text, so that every byte counts and seeds are
/// readable.
namespace Fuzz {

/// A line "a/b/c=i5" puts the int 5 under the keys a, b and c. What has only numbers as keys is a
/// list. The letter in front of a value is its type:
///
/// i int, u unsigned int, l qlonglong, d double, s text, y bytes, c character, b bool (1: true),
/// n no value, v a text that is null, I list of plain ints, S list of texts, L empty list,
/// M empty map, J JSON. Any other makes a text of the whole value.
QVariant fromLines(const QByteArray &lines);

} // namespace Fuzz
