#pragma once

#include <QBoxLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <cstddef>

/// What the tests of the dialogs share: stored maps, and descriptions that compare as a whole.
namespace GuiTest {

inline QString operator""_s(const char *utf8, std::size_t size)
{
    return QString::fromUtf8(utf8, static_cast<int>(size));
}

/// One entry of a "contents" list as the editor stores it.
inline QVariantMap content(const QString &name, const QVariant &ageMin, const QVariant &ageMax,
    const QString &gender, const QVariant &isDefault = QStringLiteral("false"))
{
    const QVariantMap params{{"age-min"_s, ageMin}, {"age-max"_s, ageMax}, {"gender"_s, gender},
        {"default"_s, isDefault}};
    return {{"type"_s, 8}, {"name"_s, name}, {"params"_s, params}};
}

inline QVariantMap screen(const QVariantList &contents, int id = 7)
{
    return {{"id"_s, id}, {"contents"_s, contents}};
}

/// @p count contents of three ages each, from 0 on; 20 of them leave 60 to 75 free.
inline QVariantList threeYearContents(int count)
{
    QVariantList contents;
    for (int i = 0; i < count; ++i) {
        contents.append(content("content %1"_s.arg(i), 3 * i, 3 * i + 2, "both"_s));
    }
    return contents;
}

/// Signals and slots that the class itself adds, in the order of their indexes.
inline QStringList describeMethods(const QMetaObject &meta)
{
    QStringList result;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QStringList parameters;
        for (int p = 0; p < method.parameterCount(); ++p) {
            parameters.append(QString::fromLatin1(method.parameterTypes().at(p)) + QLatin1Char(' ')
                + QString::fromLatin1(method.parameterNames().at(p)));
        }
        const bool isClone = (method.attributes() & QMetaMethod::Cloned) != 0;
        result.append((method.methodType() == QMetaMethod::Signal ? "signal "_s : "slot "_s)
            + QString::fromLatin1(method.name()) + QLatin1Char('(') + parameters.join(", "_s)
            + QLatin1Char(')') + (isClone ? " without its default argument"_s : QString()));
    }
    return result;
}

inline QString describeWidget(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        QString text = "label '%1'"_s.arg(label->text().replace(QLatin1Char('\n'), " / "_s));
        if (label->buddy() != nullptr)
            text += " for "_s + label->buddy()->objectName();
        if (label->wordWrap())
            text += " wrapped"_s;
        if (!label->styleSheet().isEmpty())
            text += " {%1}"_s.arg(label->styleSheet());
        return text;
    }
    QString text = QString::fromLatin1(widget->metaObject()->className());
    if (!widget->objectName().isEmpty())
        text += QLatin1Char(' ') + widget->objectName();
    for (const char *property : {"text", "title"}) {
        const QString value = widget->property(property).toString();
        if (!value.isEmpty() && widget->metaObject()->indexOfProperty(property) >= 0
            && widget->property("maximum").isNull())
            text += " '%1'"_s.arg(value);
    }
    if (!widget->styleSheet().isEmpty())
        text += " {%1}"_s.arg(widget->styleSheet());
    return text;
}

inline QString describePolicy(QSizePolicy::Policy policy)
{
    return QString::fromLatin1(QMetaEnum::fromType<QSizePolicy::Policy>().valueToKey(policy));
}

/// A layout with everything in it, one line an item, indented by depth.
inline QStringList describeLayout(const QLayout *layout, int depth = 0)
{
    const QString indent(4 * depth, QLatin1Char(' '));
    QStringList result;
    const auto *grid = qobject_cast<const QGridLayout *>(layout);
    const auto *box = qobject_cast<const QBoxLayout *>(layout);
    if (grid != nullptr)
        result.append(indent + "grid"_s);
    else if (box != nullptr && box->direction() == QBoxLayout::TopToBottom)
        result.append(indent + "from top to bottom"_s);
    else if (box != nullptr && box->direction() == QBoxLayout::LeftToRight)
        result.append(indent + "from left to right"_s);
    else
        result.append(indent + "another layout"_s);

    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem *item = layout->itemAt(i);
        QString cell;
        if (grid != nullptr) {
            int row = 0;
            int column = 0;
            int rows = 0;
            int columns = 0;
            grid->getItemPosition(i, &row, &column, &rows, &columns);
            cell = "%1,%2 "_s.arg(row).arg(column);
            if (rows != 1 || columns != 1)
                cell += "spanning %1,%2 "_s.arg(rows).arg(columns);
        }
        if (item->layout() != nullptr) {
            result.append(describeLayout(item->layout(), depth + 1));
        } else if (const QSpacerItem *spacer = item->spacerItem()) {
            const QSize size = item->sizeHint();
            result.append(indent + "    "_s + cell
                + "spacer %1x%2 %3 %4"_s.arg(size.width())
                      .arg(size.height())
                      .arg(describePolicy(spacer->sizePolicy().horizontalPolicy()),
                          describePolicy(spacer->sizePolicy().verticalPolicy())));
        } else if (const QWidget *widget = item->widget()) {
            result.append(indent + "    "_s + cell + describeWidget(widget));
            if (qobject_cast<const QGroupBox *>(widget) != nullptr)
                result.append(describeLayout(widget->layout(), depth + 2));
        }
    }
    return result;
}

/// The object names that Tab walks through inside @p parent, from its first widget on.
inline QStringList tabOrder(const QWidget *parent)
{
    QStringList result;
    for (const QWidget *next = parent->nextInFocusChain(); next != parent;
         next = next->nextInFocusChain()) {
        const bool isStop = (next->focusPolicy() & Qt::TabFocus) != 0 && next->isEnabled()
            && next->focusProxy() == nullptr && parent->isAncestorOf(next);
        if (isStop && !next->objectName().startsWith(QLatin1String("qt_")))
            result.append(next->objectName());
    }
    return result;
}

} // namespace GuiTest
