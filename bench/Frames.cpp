#include "Frames.h"

#include "tests/support/LinkedStage.h"

#include <QStringList>

#include <algorithm>

namespace Bench {

using namespace PluginKrHvcP2;

namespace {

QString countLine(int faces)
{
    return QStringLiteral("Face result count:%1\r\n").arg(faces);
}

/// The four lines of a face; viewers differ in all that the decision looks at.
QStringList faceLines(int index)
{
    const QString mark = index % 3 == 0 ? QStringLiteral(" *") : QString();
    const QString gender = index % 2 == 0 ? QStringLiteral("Female") : QStringLiteral("Male");
    return {
        QStringLiteral("Index:%1\tX:%2 Y:%3 Size:%4 Confidence:%5\r\n")
            .arg(index)
            .arg(320 + 7 * index)
            .arg(240 - 3 * index)
            .arg(60 + index * 37 % 120)
            .arg(500 + index * 13 % 400),
        QStringLiteral("Face Direction\tLR:%1 UD:%2 Roll:%3 Confidence:%4\r\n")
            .arg(index * 7 % 40 - 20)
            .arg(index * 11 % 30 - 15)
            .arg(index % 5)
            .arg(600 + index),
        QStringLiteral("Age\tAge:%1 Confidence:%2%3\r\n")
            .arg(18 + index * 17 % 50)
            .arg(300 + index)
            .arg(mark),
        QStringLiteral("Gender\tGender:%1 Confidence:%2%3\r\n")
            .arg(gender)
            .arg(700 + index)
            .arg(mark),
    };
}

int below(std::mt19937 &random, int limit)
{
    return static_cast<int>(random() % static_cast<quint32>(limit));
}

QString randomLine(std::mt19937 &random)
{
    switch (below(random, 12)) {
    case 0:
        return countLine(below(random, 4) - 1);
    case 1:
        return QStringLiteral("failed to open COM port.\r\n");
    case 2:
        return QStringLiteral("press space key to end:\r\n");
    case 3:
        return QStringLiteral("A note\twith <b>a value</b>\tand more\r\n");
    default:
        return faceLines(below(random, 30)).at(below(random, 4));
    }
}

void damage(QString &text, std::mt19937 &random)
{
    const QString letters = QStringLiteral(":\t\n\r -+*<>%0123456789AXYaFf");
    const int position = below(random, text.size());
    if (below(random, 2) == 0)
        text.remove(position, 1 + below(random, 4));
    else
        text.insert(position, letters.at(below(random, letters.size())));
}

} // namespace

QString chunk(int faces)
{
    QString text = countLine(faces);
    for (int index = 0; index < faces; ++index)
        text += faceLines(index).join(QString());
    return text;
}

QString randomChunk(std::mt19937 &random)
{
    QString text;
    for (int lines = below(random, 40) + 1; lines > 0; --lines)
        text += below(random, 3) == 0 ? randomLine(random)
                                      : faceLines(below(random, 30)).join(QString());
    for (int changes = below(random, 10); changes > 0; --changes)
        damage(text, random);
    return text;
}

DetectionContents contentTable(int contents)
{
    return detectionContents(
        KrTest::linkedScreen(contents), KrTest::linkedStage(contents).screens());
}

QString facesText(int faces)
{
    return faces == 1 ? QStringLiteral("1 face") : QStringLiteral("%1 faces").arg(faces);
}

} // namespace Bench
