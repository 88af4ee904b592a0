#include "detection/FaceEvaluation.h"

#include <QRandomGenerator>
#include <QtTest>

using namespace PluginKrHvcP2;

Q_DECLARE_METATYPE(DetectionContents)

namespace {

constexpr int UnknownAge = -1;

DetectionContent content(int ageMin, int ageMax, int genders, bool isDefault = false)
{
    return {1, ageMin, ageMax, genders, isDefault, {10}};
}

FaceResult viewer(int age, int gender, bool ageMarked = false, bool genderMarked = false)
{
    FaceResult face;
    face.index = 0;
    if (age != UnknownAge)
        face.setItem({FaceResultItem::Age, age, 0, ageMarked});
    if (gender != UnknownGender)
        face.setItem({FaceResultItem::Gender, gender, 0, genderMarked});
    return face;
}

QString name(ContentReason reason)
{
    switch (reason) {
    case ContentReason::FullFit:
        return QStringLiteral("full");
    case ContentReason::DefaultFit:
        return QStringLiteral("default");
    case ContentReason::AgeFit:
        return QStringLiteral("age");
    case ContentReason::BehindFullFit:
        return QStringLiteral("behind full");
    case ContentReason::BeforeFullFit:
        return QStringLiteral("before full");
    case ContentReason::NotLastDefault:
        return QStringLiteral("not last default");
    case ContentReason::BelowDefault:
        return QStringLiteral("below default");
    case ContentReason::NotLastAgeFit:
        return QStringLiteral("not last age");
    case ContentReason::OtherAge:
        return QStringLiteral("other age");
    case ContentReason::OtherGender:
        return QStringLiteral("other gender");
    }
    return QStringLiteral("?");
}

QString names(const QVector<ContentReason> &reasons)
{
    QStringList list;
    for (const ContentReason reason : reasons)
        list.append(name(reason));
    return list.join(QStringLiteral(", "));
}

/// The same, told from the walk over the contents: what each was when it was looked at, and what
/// it had to give way to afterwards.
QString namesByWalking(int age, int gender, const DetectionContents &contents)
{
    QStringList list;
    int defaultFit = -1;
    int ageFit = -1;
    bool isFull = false;
    for (const DetectionContent &content : contents) {
        const int position = list.size();
        const bool covers = content.ageMin <= age && age <= content.ageMax;
        if (isFull) {
            list.append(QStringLiteral("behind full"));
        } else if ((content.genders & gender) == 0) {
            list.append(covers ? QStringLiteral("age") : QStringLiteral("other gender"));
            if (covers && ageFit >= 0)
                list[ageFit] = QStringLiteral("not last age");
            if (covers)
                ageFit = position;
        } else if (covers) {
            isFull = true;
            for (QString &earlier : list) {
                if (!earlier.startsWith(QLatin1String("other ")))
                    earlier = QStringLiteral("before full");
            }
            list.append(QStringLiteral("full"));
        } else {
            list.append(
                content.isDefault ? QStringLiteral("default") : QStringLiteral("other age"));
            if (content.isDefault && defaultFit >= 0)
                list[defaultFit] = QStringLiteral("not last default");
            if (content.isDefault)
                defaultFit = position;
        }
    }
    if (!isFull && defaultFit >= 0) {
        for (QString &other : list) {
            if (other.endsWith(QLatin1String("age")) && !other.startsWith(QLatin1String("other ")))
                other = QStringLiteral("below default");
        }
    }
    return list.join(QStringLiteral(", "));
}

} // namespace

class tst_FaceEvaluation : public QObject
{
    Q_OBJECT

private slots:
    void reasons_data();
    void reasons();
    void viewer_data();
    void viewer();
    void agreesWithTheChoice();
};

void tst_FaceEvaluation::reasons_data()
{
    QTest::addColumn<int>("age");
    QTest::addColumn<int>("gender");
    QTest::addColumn<DetectionContents>("contents");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no content") << 25 << int(Female) << DetectionContents() << QString();
    QTest::newRow("the first of two full fits")
        << 25 << int(Female)
        << DetectionContents{content(20, 29, Female, true), content(20, 29, Female)}
        << QStringLiteral("full, behind full");
    QTest::newRow("candidates before a full fit")
        << 25 << int(Female)
        << DetectionContents{content(40, 49, Female, true), content(20, 29, Male),
               content(50, 59, Female), content(40, 49, Male), content(20, 29, BothGenders)}
        << QStringLiteral("before full, before full, other age, other gender, full");
    QTest::newRow("the last default, and those below it")
        << 60 << int(Male)
        << DetectionContents{content(20, 29, Male, true), content(55, 65, Female),
               content(30, 39, Male, true), content(40, 49, Male)}
        << QStringLiteral("not last default, below default, default, other age");
    QTest::newRow("the last of the age")
        << 25 << int(Male)
        << DetectionContents{content(20, 29, Female), content(30, 39, Female, true),
               content(25, 25, Female), content(30, 39, Male)}
        << QStringLiteral("not last age, other gender, age, other age");
    QTest::newRow("nothing fits") << 70 << int(Female)
                                  << DetectionContents{content(20, 29, Female),
                                         content(20, 29, Male)}
                                  << QStringLiteral("other age, other gender");
    QTest::newRow("an unknown age takes the default")
        << UnknownAge << int(Female) << DetectionContents{content(0, 75, Female, true)}
        << QStringLiteral("default");
    QTest::newRow("an unknown gender, the age fits")
        << 25 << int(UnknownGender) << DetectionContents{content(20, 29, BothGenders)}
        << QStringLiteral("age");
}

void tst_FaceEvaluation::reasons()
{
    QFETCH(int, age);
    QFETCH(int, gender);
    QFETCH(DetectionContents, contents);
    QFETCH(QString, expected);
    QCOMPARE(names(evaluateFace(::viewer(age, gender), contents).reasons), expected);
}

void tst_FaceEvaluation::viewer_data()
{
    QTest::addColumn<int>("age");
    QTest::addColumn<int>("gender");
    QTest::addColumn<bool>("ageMarked");
    QTest::addColumn<bool>("genderMarked");
    QTest::newRow("nothing measured") << UnknownAge << int(UnknownGender) << false << false;
    QTest::newRow("a settled age") << 30 << int(Male) << true << false;
    QTest::newRow("a settled gender") << 0 << int(Female) << false << true;
}

void tst_FaceEvaluation::viewer()
{
    QFETCH(int, age);
    QFETCH(int, gender);
    QFETCH(bool, ageMarked);
    QFETCH(bool, genderMarked);
    const FaceEvaluation evaluation
        = evaluateFace(::viewer(age, gender, ageMarked, genderMarked), {});
    QCOMPARE(evaluation.age, age);
    QCOMPARE(evaluation.gender, gender);
    QCOMPARE(evaluation.ageMarked, ageMarked);
    QCOMPARE(evaluation.genderMarked, genderMarked);
    QVERIFY(!evaluation.match.isValid());
}

void tst_FaceEvaluation::agreesWithTheChoice()
{
    QRandomGenerator random(20180201);
    const auto below = [&](int bound) { return random.bounded(bound); };
    for (int round = 0; round < 300000; ++round) {
        DetectionContents contents;
        const int count = below(8);
        for (int i = 0; i < count; ++i) {
            const int ageMin = below(8);
            contents.append(content(ageMin, ageMin + below(4), 1 + below(3), below(3) == 0));
        }
        const int age = below(10) - 1;
        const int gender = below(3);
        const FaceResult face = ::viewer(age, gender, below(2) == 0, below(2) == 0);

        const FaceEvaluation evaluation = evaluateFace(face, contents);
        const ContentMatch match = matchContent(face, contents);
        QCOMPARE(evaluation.match.position, match.position);
        QCOMPARE(evaluation.match.bonus, match.bonus);
        const QString expected = namesByWalking(age, gender, contents);
        if (names(evaluation.reasons) != expected) {
            QCOMPARE(QStringLiteral("age %1, gender %2: %3")
                         .arg(age)
                         .arg(gender)
                         .arg(names(evaluation.reasons)),
                expected);
        }
    }
}

QTEST_GUILESS_MAIN(tst_FaceEvaluation)
#include "tst_faceevaluation.moc"
