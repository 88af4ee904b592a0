#include "tests/fuzz/VariantLines.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QStringList>
#include <QVariantMap>

#include <algorithm>

namespace Fuzz {

namespace {

constexpr int MaxDepth = 12;
constexpr int MaxLines = 2000;

struct Node
{
    QByteArray key;
    QByteArray value;
    QList<Node> children;

    /// The child of that key, which is made when there is none.
    Node &child(const QByteArray &childKey)
    {
        const auto it = std::find_if(children.begin(), children.end(),
            [&](const Node &node) { return node.key == childKey; });
        if (it != children.end())
            return *it;
        children.append({childKey, QByteArray(), {}});
        return children.last();
    }
};

QString textOf(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size()); // keeps NULs
}

QVariant jsonVariant(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    return document.isArray() ? QVariant(document.array()) : QVariant(document.object());
}

QVariant plainInts(const QByteArray &text)
{
    QList<int> ints;
    const QList<QByteArray> parts = text.split(',');
    for (const QByteArray &part : parts)
        ints.append(part.toInt());
    return QVariant::fromValue(ints);
}

QVariant fromValue(const QByteArray &value)
{
    const QByteArray rest = value.mid(1);
    switch (value.isEmpty() ? '\0' : value.at(0)) {
    case 'i':
        return rest.toInt();
    case 'u':
        return rest.toUInt();
    case 'l':
        return rest.toLongLong();
    case 'd':
        return rest.toDouble();
    case 's':
        return textOf(rest);
    case 'y':
        return rest;
    case 'c':
        return textOf(rest).isEmpty() ? QChar() : textOf(rest).at(0);
    case 'b':
        return rest == "1";
    case 'n':
        return {};
    case 'v':
        return QString();
    case 'I':
        return plainInts(rest);
    case 'S':
        return textOf(rest).split(QLatin1Char(','));
    case 'L':
        return QVariantList();
    case 'M':
        return QVariantMap();
    case 'J':
        return jsonVariant(rest);
    default:
        return textOf(value);
    }
}

bool isListIndex(const Node &node)
{
    return std::all_of(
        node.key.cbegin(), node.key.cend(), [](char c) { return c >= '0' && c <= '9'; });
}

QVariant fromNode(const Node &node)
{
    if (node.children.isEmpty())
        return fromValue(node.value);
    if (std::all_of(node.children.cbegin(), node.children.cend(), isListIndex)) {
        QVariantList list;
        for (const Node &child : node.children)
            list.append(fromNode(child));
        return list;
    }
    QVariantMap map;
    for (const Node &child : node.children)
        map.insert(textOf(child.key), fromNode(child));
    return map;
}

} // namespace

QVariant fromLines(const QByteArray &lines)
{
    Node root;
    const QList<QByteArray> all = lines.split('\n').mid(0, MaxLines);
    for (const QByteArray &line : all) {
        const int sign = line.indexOf('=');
        if (sign < 0)
            continue;
        Node *node = &root;
        const QList<QByteArray> keys = line.left(sign).split('/').mid(0, MaxDepth);
        for (const QByteArray &key : keys)
            node = &node->child(key);
        node->value = line.mid(sign + 1);
    }
    return fromNode(root);
}

} // namespace Fuzz
