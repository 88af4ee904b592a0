#pragma once

#include "tools/analysis/Decider.h"
#include "tools/analysis/Plan.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

/// Women of 20 to 39 get #1, boys up to 12 get #2.
inline Analysis::Plan samplePlan(int concurrent = 1)
{
    Analysis::Plan plan;
    plan.title = QStringLiteral("Sample");
    plan.screenId = 1;
    plan.entries.resize(2);
    plan.entries[0].number = 1;
    plan.entries[0].name = QStringLiteral("Women 20-39");
    plan.entries[1].number = 2;
    plan.entries[1].name = QStringLiteral("Boys");
    plan.contents = {{1, 20, 39, PluginKrHvcP2::Female, false, {2}},
        {2, 0, 12, PluginKrHvcP2::Male, false, {3}}};
    plan.settings.concurrent = concurrent;
    return plan;
}

/// What the sensor program prints of one face.
inline QString sampleFace(int index, int size, int age, const char *gender)
{
    return QStringLiteral("Index:%1\tX:800 Y:600 Size:%2 Confidence:800\n"
                          "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
                          "Age\tAge:%3 Confidence:500\nGender\tGender:%4 Confidence:900\n")
        .arg(QString::number(index), QString::number(size), QString::number(age),
            QLatin1String(gender));
}

inline QDateTime sampleTime(qint64 ms)
{
    return QDateTime(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC).addMSecs(ms);
}

/// "#1 sent, #2 restricted 3800, none".
inline QString outcomes(const Analysis::Decision &decision)
{
    QStringList faces;
    for (const Analysis::DecidedFace &face : decision.faces) {
        const QString number = QStringLiteral("#%1 ").arg(face.sequence);
        switch (face.outcome) {
        case Analysis::DecidedFace::NothingFits:
            faces << QStringLiteral("none");
            break;
        case Analysis::DecidedFace::Cut:
            faces << number + QStringLiteral("cut %1").arg(face.remainingMs);
            break;
        case Analysis::DecidedFace::Restricted:
            faces << number + QStringLiteral("restricted %1").arg(face.remainingMs);
            break;
        case Analysis::DecidedFace::Sent:
            faces << number + QStringLiteral("sent");
            break;
        }
    }
    return faces.join(QStringLiteral(", "));
}
