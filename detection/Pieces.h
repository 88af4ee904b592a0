#pragma once

#include <QStringView>

#include <algorithm>

namespace PluginKrHvcP2 {

/// Cuts the non-empty pieces between separators off the front of a text, one by one and without
/// copying. The text has to outlive them.
class Pieces
{
public:
    Pieces(QStringView text, char16_t separator)
        : m_next(text.cbegin())
        , m_end(text.cend())
        , m_separator(separator)
    { }

    /// The next piece; empty when there is none any more.
    QStringView next()
    {
        while (m_next != m_end && *m_next == m_separator)
            ++m_next;
        const QChar *const begin = m_next;
        m_next = std::find(m_next, m_end, m_separator);
        return {begin, m_next};
    }

private:
    const QChar *m_next;
    const QChar *m_end;
    QChar m_separator;
};

} // namespace PluginKrHvcP2
