#pragma once

#include <QFont>

namespace KrTest {

/// A font that is the same everywhere: each letter is a box, half as wide as the font is high.
QFont boxFont(int pixelSize);

} // namespace KrTest
