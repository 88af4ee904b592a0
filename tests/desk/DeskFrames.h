#pragma once

#include "core/screen/Gender.h"
#include "demo/desk/SeenFrame.h"
#include "tools/analysis/Plan.h"

#include <QString>
#include <QVector>

#include <array>

namespace DeskTest {

/// A moment at which frames arrive.
inline QDateTime momentMs(qint64 ms)
{
    return QDateTime(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC).addMSecs(ms);
}

/// Women of 20 to 39 get #1, boys up to 12 #2, men of 60 and more #3.
inline Analysis::Plan shopPlan()
{
    using namespace PluginKrHvcP2;
    const DetectionContents contents{{1, 20, 39, Female, false, {2}}, {2, 0, 12, Male, false, {3}},
        {3, 60, 99, Male, false, {4}}};
    const std::array<const char *, 3> names{"Handbags", "Rockets", "Bicycles"};
    const std::array<Stage::StageColor, 3> colors{
        {{179, 50, 78, 255}, {224, 112, 43, 255}, {37, 99, 168, 255}}};
    Analysis::Plan plan;
    plan.contents = contents;
    for (int i = 0; i < contents.size(); ++i) {
        Analysis::PlannedContent entry;
        entry.number = i + 1;
        entry.name = QString::fromLatin1(names.at(i));
        entry.color = colors.at(i);
        entry.content = contents.at(i);
        plan.entries.append(entry);
    }
    return plan;
}

struct Person
{
    int x = 800;
    int y = 600;
    int size = 200;
    const char *direction = "LR:0 UD:0 Roll:0";
    const char *age = "30"; ///< "30 *" when it is settled
    const char *gender = "Female"; ///< likewise
};

/// What the sensor program prints for @p person.
inline QString faceText(int index, const Person &person)
{
    return QStringLiteral("Index:%1\tX:%2 Y:%3 Size:%4 Confidence:800\n")
               .arg(index)
               .arg(person.x)
               .arg(person.y)
               .arg(person.size)
        + QStringLiteral("Face Direction\t%1\nAge\tAge:%2\nGender\tGender:%3\n")
              .arg(QLatin1String(person.direction), QLatin1String(person.age),
                  QLatin1String(person.gender));
}

inline QString nobodyText()
{
    return QStringLiteral("Face result count:0\n");
}

inline QString frameText(const QVector<Person> &people)
{
    QString text = QStringLiteral("Face result count:%1\n").arg(people.size());
    for (int i = 0; i < people.size(); ++i)
        text += faceText(i, people.at(i));
    return text;
}

/// The frame in which @p text arrives, with what @p plan makes of it.
inline Desk::SeenFrame seenFrame(const Analysis::Plan &plan, const QString &text)
{
    return {1, text, Analysis::Decider(plan).decide(text, momentMs(0))};
}

} // namespace DeskTest
