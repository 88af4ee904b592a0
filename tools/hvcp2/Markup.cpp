#include "tools/hvcp2/Markup.h"

namespace Hvcp2 {

namespace {

constexpr double LetterWidth = 0.62; // of the size of the letters; on the safe side

} // namespace

void Markup::start(const char *element)
{
    m_writer.writeStartElement(QLatin1String(element));
}

void Markup::end()
{
    m_writer.writeEndElement();
}

void Markup::element(const char *name, const QString &text)
{
    m_writer.writeTextElement(QLatin1String(name), text);
}

void Markup::attribute(const char *name, const QString &value)
{
    m_writer.writeAttribute(QLatin1String(name), value);
}

void Markup::attribute(const char *name, int value)
{
    attribute(name, QString::number(value));
}

void Markup::attribute(const char *name, const char *value)
{
    attribute(name, QString(QLatin1String(value)));
}

void Markup::text(const QString &text)
{
    m_writer.writeCharacters(text);
}

void Markup::startPicture(const char *styleClass, const QString &id, int width, int height,
    const QString &title, const QString &description)
{
    start("svg");
    m_writer.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2000/svg"));
    attribute("width", width);
    attribute("height", height);
    attribute("viewBox",
        QStringLiteral("0 0 %1 %2").arg(QString::number(width), QString::number(height)));
    attribute("class", styleClass);
    attribute("role", "img");
    attribute("aria-labelledby", QStringLiteral("%1-title %1-description").arg(id));
    start("title");
    attribute("id", id + QLatin1String("-title"));
    text(title);
    end();
    start("desc");
    attribute("id", id + QLatin1String("-description"));
    text(description);
    end();
}

void Markup::startRectangle(int x, int y, int width, int height)
{
    start("rect");
    attribute("x", x);
    attribute("y", y);
    attribute("width", width);
    attribute("height", height);
}

void Markup::label(int x, int y, const char *styleClass, const QString &text, const char *anchor)
{
    start("text");
    attribute("x", x);
    attribute("y", y);
    if (*styleClass != '\0')
        attribute("class", styleClass);
    if (qstrcmp(anchor, "start") != 0)
        attribute("text-anchor", anchor);
    m_writer.writeCharacters(text);
    end();
}

int columnsFor(int width, int letterSize)
{
    return static_cast<int>(width / (letterSize * LetterWidth));
}

int widthOf(int columns, int letterSize)
{
    return static_cast<int>(columns * letterSize * LetterWidth);
}

} // namespace Hvcp2
