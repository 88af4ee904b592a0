#include "tests/desk/BoxFont.h"

#include <QByteArray>
#include <QDataStream>
#include <QFontDatabase>
#include <QMap>
#include <QVector>

namespace KrTest {

namespace {

// In units of the font.
constexpr quint16 UnitsPerEm = 1000;
constexpr qint16 Ascent = 800;
constexpr qint16 Descent = -200;
constexpr quint16 Advance = 500;
constexpr qint16 BoxLeft = 60;
constexpr qint16 BoxRight = 440;
constexpr qint16 BoxTop = 600;

constexpr quint16 FirstLetter = 0x20;
constexpr quint16 LastLetter = 0x7e;
constexpr quint16 Ellipsis = 0x2026;

// The box stands for letters that are not there, too.
constexpr quint16 BoxGlyph = 1;
constexpr quint16 BlankGlyph = 2;
constexpr quint16 GlyphCount = 3;

template <typename... Values>
QByteArray packed(Values... values)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (stream << ... << values);
    return bytes;
}

QByteArray head()
{
    return packed(quint32(0x00010000), quint32(0x00010000), quint32(0) /* sum, not looked at */,
        quint32(0x5f0f3cf5), quint16(0), UnitsPerEm, qint64(0), qint64(0), qint16(0), qint16(0),
        qint16(BoxRight), BoxTop, quint16(0), quint16(6) /* smallest size */, qint16(2),
        qint16(1) /* long offsets */, qint16(0));
}

QByteArray hhea()
{
    return packed(quint32(0x00010000), Ascent, Descent, qint16(0), Advance, qint16(0), qint16(0),
        BoxRight, qint16(1), qint16(0), qint16(0), qint64(0), qint16(0), GlyphCount);
}

QByteArray maxp()
{
    QByteArray table = packed(quint32(0x00010000), GlyphCount, quint16(4), quint16(1));
    return table + packed(quint16(0), quint16(0), quint16(1)) + QByteArray(16, '\0');
}

QByteArray hmtx()
{
    return packed(Advance, BoxLeft, Advance, BoxLeft, Advance, qint16(0));
}

QByteArray box()
{
    const quint8 corner = 0x01; // on the curve, both steps in two bytes
    const qint16 width = BoxRight - BoxLeft;
    QByteArray glyph = packed(qint16(1), BoxLeft, qint16(0), BoxRight, BoxTop, quint16(3),
        quint16(0), corner, corner, corner, corner);
    glyph += packed(BoxLeft, qint16(0), width, qint16(0)); // x
    glyph += packed(qint16(0), BoxTop, qint16(0), qint16(-BoxTop)); // y
    return glyph;
}

QByteArray loca()
{
    const quint32 size = box().size();
    return packed(quint32(0), size, 2 * size, 2 * size);
}

QByteArray cmap()
{
    constexpr quint16 LetterCount = LastLetter - FirstLetter + 1;
    QByteArray glyphs = packed(BlankGlyph);
    for (int i = 1; i < LetterCount + 1; ++i)
        glyphs += packed(BoxGlyph);
    const QByteArray segments = packed(quint16(6), quint16(4), quint16(1), quint16(2), // 3 of them
        LastLetter, Ellipsis, quint16(0xffff), quint16(0), FirstLetter, Ellipsis, quint16(0xffff),
        qint16(0), qint16(0), qint16(1), quint16(6), quint16(4 + 2 * LetterCount), quint16(0));
    const auto size = static_cast<quint16>(6 + segments.size() + glyphs.size());
    return packed(quint16(0), quint16(1), quint16(3), quint16(1), quint32(12), quint16(4), size,
               quint16(0))
        + segments + glyphs;
}

QByteArray name(const QString &family)
{
    QByteArray text;
    for (const QChar character : family)
        text += packed(character.unicode());
    const QByteArray style = packed(quint16('R'), quint16('e'), quint16('g'));
    const auto record = [](quint16 id, const QByteArray &value, int offset) {
        return packed(
            quint16(3), quint16(1), quint16(0x409), id, quint16(value.size()), quint16(offset));
    };
    return packed(quint16(0), quint16(2), quint16(30)) + record(1, text, 0)
        + record(2, style, text.size()) + text + style;
}

QByteArray os2()
{
    QByteArray table = packed(quint16(1), qint16(Advance), quint16(400), quint16(5), quint16(0));
    table += QByteArray(32, '\0'); // sub- and superscripts, family, panose
    table += packed(quint32(1), quint32(0), quint32(0), quint32(0), quint32(0x4e4f4e45));
    table += packed(quint16(0x40), FirstLetter, Ellipsis, Ascent, Descent, qint16(0), Ascent,
        quint16(-Descent), quint32(1), quint32(0));
    return table;
}

QByteArray post()
{
    return packed(quint32(0x00030000)) + QByteArray(28, '\0');
}

QByteArray fontFile(const QString &family)
{
    const QMap<QByteArray, QByteArray> tables{{"OS/2", os2()}, {"cmap", cmap()},
        {"glyf", box() + box()}, {"head", head()}, {"hhea", hhea()}, {"hmtx", hmtx()},
        {"loca", loca()}, {"maxp", maxp()}, {"name", name(family)}, {"post", post()}};
    const int count = tables.size();
    QByteArray directory = packed(
        quint32(0x00010000), quint16(count), quint16(128), quint16(3), quint16(count * 16 - 128));
    QByteArray body;
    for (auto it = tables.cbegin(); it != tables.cend(); ++it) {
        const quint32 offset = 12 + 16 * count + body.size();
        directory += it.key() + packed(quint32(0), offset, quint32(it->size()));
        body += it.value();
        body += QByteArray((4 - body.size() % 4) % 4, '\0');
    }
    return directory + body;
}

} // namespace

QFont boxFont(int pixelSize)
{
    static const QString family = [] {
        const int id
            = QFontDatabase::addApplicationFontFromData(fontFile(QStringLiteral("KrHvcP2 Boxes")));
        return QFontDatabase::applicationFontFamilies(id).value(0);
    }();
    QFont font(family);
    font.setPixelSize(pixelSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

} // namespace KrTest
