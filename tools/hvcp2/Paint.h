#pragma once

#include "demo/stage/StageColor.h"

#include <QString>

namespace Hvcp2 {

/// Colours for a terminal; texts stay as they are where there is none.
class Paint
{
public:
    enum Depth { None, Basic, Full }; ///< no colours, the terminal's own sixteen, any

    Paint() = default;
    explicit Paint(Depth depth)
        : m_depth(depth)
    { }

    QString heading(const QString &text) const;
    QString warning(const QString &text) const;
    QString good(const QString &text) const;
    QString on(const Stage::StageColor &background, const QString &text) const;

private:
    QString with(const QString &code, const QString &text) const;

    Depth m_depth = None;
};

} // namespace Hvcp2
