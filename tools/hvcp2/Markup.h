#pragma once

#include <QString>
#include <QXmlStreamWriter>

namespace Hvcp2 {

/// Writes XML with names from the source.
class Markup
{
public:
    explicit Markup(QXmlStreamWriter &writer) ///< which has to outlive it
        : m_writer(writer)
    { }

    void start(const char *element);
    void end();
    void element(const char *name, const QString &text); ///< with an end tag in any case
    void attribute(const char *name, const QString &value);
    void attribute(const char *name, int value);
    void attribute(const char *name, const char *value);
    void text(const QString &text);

    // Of a picture. Lengths are in pixels of its own size.

    /// The element svg with the title and description that screen readers say. Their ids begin
    /// with @p id.
    void startPicture(const char *styleClass, const QString &id, int width, int height,
        const QString &title, const QString &description);
    void startRectangle(int x, int y, int width, int height);
    /// @p styleClass may be empty, @p anchor is "start", "middle" or "end".
    void label(
        int x, int y, const char *styleClass, const QString &text, const char *anchor = "start");

private:
    QXmlStreamWriter &m_writer;
};

/// As many columns of text, in the sense of columnsOf(), certainly fit into @p width pixels.
int columnsFor(int width, int letterSize);
/// The pixels that so many columns need at most.
int widthOf(int columns, int letterSize);

} // namespace Hvcp2
