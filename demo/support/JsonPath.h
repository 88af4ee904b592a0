#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Demo {

/// Which value of a JSON text: the keys and list positions that lead to it from the outermost
/// value on. Without any it is the outermost value itself.
class JsonPath
{
public:
    JsonPath key(const QString &key) const; ///< of the object that the path leads to
    JsonPath element(int index) const; ///< of the list that the path leads to; counted from 0

    bool isEmpty() const { return m_steps.isEmpty(); }
    QString toString() const; ///< for example "viewers[2].path[0].at"

    /// Where it begins in @p json, a text that parses: at the key of a value that has one. What the
    /// text does not have is looked for at the value in which it is missing.
    int offsetIn(const QByteArray &json) const;

    /// Where the elements of the list begin that the path leads to: in one pass, while offsetIn()
    /// goes through the text for each. Empty when it leads to no list.
    QVector<int> elementOffsetsIn(const QByteArray &json) const;

private:
    struct Step
    {
        QString key; // of an object
        int index = -1; // in a list; -1: the step is a key
    };

    JsonPath with(const Step &step) const;

    QVector<Step> m_steps;
};

} // namespace Demo
