#include "demo/desk/FaceMarks.h"
#include "tests/desk/DeskFrames.h"

#include <QtTest>

using namespace Analysis;
using namespace Desk;
using namespace DeskTest;

namespace {

FaceMarks marksOf(const QString &text, const Plan &plan = shopPlan())
{
    return faceMarks(seenFrame(plan, text), plan);
}

FaceMark markOf(const Person &person, const Plan &plan = shopPlan())
{
    return marksOf(frameText({person}), plan).faces.value(0);
}

/// "34 Female*", or "-" for what is not known.
QString readings(const FaceMark &mark)
{
    const auto text = [](const MarkReading &reading) -> QString {
        return (reading.isKnown ? reading.text : QStringLiteral("-"))
            + (reading.isSettled ? QStringLiteral("*") : QString());
    };
    return text(mark.age) + QLatin1Char(' ') + text(mark.gender);
}

/// The ranks by the sensor's numbers of the faces, "2 1" for the faces 0 and 1.
QString ranks(const FaceMarks &marks)
{
    QMap<int, QString> byIndex;
    for (const FaceMark &mark : marks.faces)
        byIndex[mark.index] = QString::number(mark.rank);
    return QStringList(byIndex.values()).join(QLatin1Char(' '));
}

} // namespace

Q_DECLARE_METATYPE(Person)

class tst_FaceMarks : public QObject
{
    Q_OBJECT

private slots:
    void readings_data();
    void readings();
    void place_data();
    void place();
    void gaze_data();
    void gaze();
    void unreadDirection();
    void ranks_data();
    void ranks();
    void reasons_data();
    void reasons();
    void noContents();
    void outcomes();
    void restrictionOfALog();
    void contentWithoutEntry();
    void longNames();
    void frames_data();
    void frames();
    void manyFaces();
};

void tst_FaceMarks::readings_data()
{
    QTest::addColumn<QString>("age");
    QTest::addColumn<QString>("gender");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QColor>("ageColor");
    QTest::addColumn<QColor>("genderColor");

    const QColor yellow("yellow");
    const QColor pink("deeppink");
    const QColor blue("skyblue");
    const QColor grey(0x8b, 0x96, 0xa2);
    QTest::newRow("a woman") << "34"
                             << "Female"
                             << "34 Female" << yellow << pink;
    QTest::newRow("a man") << "50"
                           << "Male"
                           << "50 Male" << yellow << blue;
    QTest::newRow("age settled") << "8 *"
                                 << "Male"
                                 << "8* Male" << yellow << blue;
    QTest::newRow("gender settled") << "8"
                                    << "Female *"
                                    << "8 Female*" << yellow << pink;
    QTest::newRow("no age") << "-"
                            << "Male"
                            << "- Male" << grey << blue;
    QTest::newRow("no gender") << "20"
                               << "-"
                               << "20 -" << yellow << grey;
    QTest::newRow("neither, with a mark") << "- *"
                                          << "- *"
                                          << "- -" << grey << grey;
}

void tst_FaceMarks::readings()
{
    QFETCH(QString, age);
    QFETCH(QString, gender);
    QFETCH(QColor, ageColor);
    QFETCH(QColor, genderColor);

    const QByteArray ageText = age.toLatin1();
    const QByteArray genderText = gender.toLatin1();
    const FaceMark mark
        = markOf({800, 600, 200, "LR:0 UD:0 Roll:0", ageText.data(), genderText.data()});
    QTEST(::readings(mark), "expected");
    QCOMPARE(mark.age.color, ageColor);
    QCOMPARE(mark.gender.color, genderColor);
}

void tst_FaceMarks::place_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<bool>("isPlaced");
    QTest::addColumn<QPointF>("center");
    QTest::addColumn<qreal>("size");

    QTest::newRow("in the middle") << "X:800 Y:600 Size:200" << true << QPointF(800, 600) << 200.0;
    QTest::newRow("first pixel") << "X:0 Y:0 Size:40" << true << QPointF(0, 0) << 40.0;
    QTest::newRow("last pixel") << "X:1599 Y:1199 Size:40" << true << QPointF(1599, 1199) << 40.0;
    QTest::newRow("right of the picture") << "X:1601 Y:600 Size:40" << false << QPointF() << 0.0;
    QTest::newRow("above the picture") << "X:800 Y:-1 Size:40" << false << QPointF() << 0.0;
    QTest::newRow("far away") << "X:2147483647 Y:2147483647 Size:40" << false << QPointF() << 0.0;
    QTest::newRow("negative size") << "X:800 Y:600 Size:-5" << true << QPointF(800, 600) << 0.0;
    QTest::newRow("huge") << "X:800 Y:600 Size:2147483647" << true << QPointF(800, 600) << 1200.0;
    QTest::newRow("not read") << "X:800 Y:- Size:40" << false << QPointF() << 0.0;
}

void tst_FaceMarks::place()
{
    QFETCH(QString, box);
    QFETCH(bool, isPlaced);
    QFETCH(QPointF, center);
    QFETCH(qreal, size);

    const FaceMarks marks = marksOf(QStringLiteral("Index:0\t%1 Confidence:800\n"
                                                   "Age\tAge:30\nGender\tGender:Female\n")
                                        .arg(box));
    QCOMPARE(marks.count(), 1); // wherever it is
    const FaceMark mark = marks.faces.constFirst();
    QCOMPARE(mark.place.has_value(), isPlaced);
    if (isPlaced) {
        QCOMPARE(mark.place->center, center);
        QCOMPARE(mark.place->size, size);
    }
}

void tst_FaceMarks::gaze_data()
{
    QTest::addColumn<QString>("direction");
    QTest::addColumn<QPointF>("tip");
    QTest::addColumn<bool>("isWhole");
    QTest::addColumn<qreal>("roll");

    const qreal half = 0.5;
    const qreal root = std::sqrt(0.5);
    QTest::newRow("at the sensor") << "LR:0 UD:0 Roll:0" << QPointF(0, 0) << true << 0.0;
    QTest::newRow("to the right") << "LR:30 UD:0 Roll:0" << QPointF(half, 0) << true << 0.0;
    QTest::newRow("to the left") << "LR:-30 UD:0 Roll:0" << QPointF(-half, 0) << true << 0.0;
    QTest::newRow("up") << "LR:0 UD:30 Roll:0" << QPointF(0, -half) << true << 0.0;
    QTest::newRow("down, rolled") << "LR:0 UD:-30 Roll:20" << QPointF(0, half) << true << 20.0;
    QTest::newRow("both") << "LR:45 UD:45 Roll:-90" << QPointF(half, -root) << true << -90.0;
    QTest::newRow("sideways") << "LR:90 UD:0 Roll:0" << QPointF(1, 0) << true << 0.0;
    QTest::newRow("from behind") << "LR:180 UD:0 Roll:0" << QPointF(1, 0) << true << 0.0;
    QTest::newRow("beyond all angles")
        << "LR:-2147483648 UD:0 Roll:400" << QPointF(-1, 0) << true << 40.0;
    QTest::newRow("left or right alone") << "LR:30 Roll:0" << QPointF(half, 0) << false << 0.0;
}

void tst_FaceMarks::gaze()
{
    QFETCH(QString, direction);
    QFETCH(QPointF, tip);

    const QByteArray text = direction.toLatin1();
    const FaceMark mark = markOf({800, 600, 200, text.data()});
    QVERIFY(mark.gaze);
    QVERIFY2(QLineF(mark.gaze->tip, tip).length() < 1e-9,
        qPrintable(QStringLiteral("%1, %2").arg(mark.gaze->tip.x()).arg(mark.gaze->tip.y())));
    QTEST(mark.gaze->isWhole, "isWhole");
    QTEST(mark.roll, "roll");
}

void tst_FaceMarks::unreadDirection()
{
    QVERIFY(!markOf({800, 600, 200, "LR:- UD:- Roll:-"}).gaze);
    QVERIFY(!markOf({800, 600, 200, "UD:10 Roll:10"}).gaze);
}

void tst_FaceMarks::ranks_data()
{
    QTest::addColumn<QVector<Person>>("people");
    QTest::addColumn<QString>("expected");

    const char *const straight = "LR:0 UD:0 Roll:0";
    const char *const aside = "LR:40 UD:0 Roll:0";
    QTest::newRow("the larger one")
        << QVector<Person>{{100, 100, 100}, {900, 100, 300}, {500, 100, 200}} << "3 1 2";
    QTest::newRow("the straighter one")
        << QVector<Person>{{100, 100, 200, aside}, {900, 100, 200, straight}} << "2 1";
    // A boy of 8 gets a content, a man of 50 none.
    QTest::newRow("also one whom nothing fits") << QVector<Person>{
        {100, 100, 100, straight, "8", "Male"},
        {900, 100, 300, straight, "50", "Male"}} << "2 1";
    // What fits better goes first, but is no more prominent.
    QTest::newRow("without what the fit adds") << QVector<Person>{
        {100, 100, 300, straight, "30", "Male"}, {500, 100, 200, straight, "30 *", "Female *"},
        {900, 100, 100, straight, "30"}} << "1 2 3";
    QTest::newRow("equal ones by the decision") << QVector<Person>{
        {100, 100, 200, straight, "50", "Male"},
        {900, 100, 200, straight, "8", "Male"}} << "2 1";
}

void tst_FaceMarks::ranks()
{
    QFETCH(QVector<Person>, people);

    QTEST(::ranks(marksOf(frameText(people))), "expected");
}

void tst_FaceMarks::reasons_data()
{
    QTest::addColumn<QString>("age");
    QTest::addColumn<QString>("gender");
    QTest::addColumn<QString>("note");
    QTest::addColumn<QString>("shortNote");

    QTest::newRow("contents for the gender") << "50"
                                             << "Female"
                                             << "nothing for this age"
                                             << "no: age";
    QTest::newRow("no gender") << "50"
                               << "-"
                               << "nothing for this age"
                               << "no: age";
    QTest::newRow("no age") << "-"
                            << "Female"
                            << "age unknown"
                            << "unknown";
    QTest::newRow("neither") << "-"
                             << "-"
                             << "age and gender unknown"
                             << "unknown";
}

void tst_FaceMarks::reasons()
{
    QFETCH(QString, age);
    QFETCH(QString, gender);

    const QByteArray ageText = age.toLatin1();
    const QByteArray genderText = gender.toLatin1();
    const FaceMark mark
        = markOf({800, 600, 200, "LR:0 UD:0 Roll:0", ageText.data(), genderText.data()});
    QCOMPARE(mark.outcome, DecidedFace::NothingFits);
    QCOMPARE(mark.sequence, 0);
    QTEST(mark.note, "note");
    QTEST(mark.shortNote, "shortNote");
    QCOMPARE(mark.color, QColor(0x8b, 0x96, 0xa2));
}

void tst_FaceMarks::noContents()
{
    Plan plan = shopPlan();
    const Person woman{800, 600, 200, "LR:0 UD:0 Roll:0", "50", "Female"};
    plan.contents = {plan.contents.at(1)}; // for boys
    QCOMPARE(markOf(woman, plan).note, QStringLiteral("nothing for this gender"));
    plan.contents.clear();
    QCOMPARE(markOf(woman, plan).note, QStringLiteral("no content takes part"));
}

void tst_FaceMarks::outcomes()
{
    Plan plan = shopPlan();
    plan.settings.concurrent = 2;
    const Person woman{800, 600, 300};
    const Person boy{400, 600, 200, "LR:0 UD:0 Roll:0", "8", "Male"};
    const Person old{200, 600, 100, "LR:0 UD:0 Roll:0", "70", "Male"};
    Decider decider(plan);
    decider.decide(frameText({boy}), momentMs(-2100));
    const QString text = frameText({old, boy, woman});
    const FaceMarks marks = faceMarks({1, text, decider.decide(text, momentMs(0))}, plan);

    QCOMPARE(marks.faces.size(), 3);
    const FaceMark &sent = marks.faces.at(0);
    QVERIFY(sent.hasDecided());
    QCOMPARE(sent.sequence, 1);
    QCOMPARE(sent.content, QStringLiteral("Handbags"));
    QCOMPARE(sent.color, QColor(179, 50, 78));
    QCOMPARE(sent.note, QString());

    const FaceMark &restricted = marks.faces.at(1);
    QVERIFY(!restricted.hasDecided());
    QCOMPARE(restricted.outcome, DecidedFace::Restricted);
    QCOMPARE(restricted.sequence, 2);
    QCOMPARE(restricted.note, QStringLiteral("restricted 2.9 s"));
    QCOMPARE(restricted.shortNote, QStringLiteral("2.9 s"));

    const FaceMark &cut = marks.faces.at(2);
    QVERIFY(!cut.hasDecided());
    QCOMPARE(cut.outcome, DecidedFace::Cut);
    QCOMPARE(cut.content, QStringLiteral("Bicycles"));
    QCOMPARE(cut.note, QStringLiteral("cut"));
}

void tst_FaceMarks::restrictionOfALog()
{
    SeenFrame frame = seenFrame(shopPlan(), frameText({Person()}));
    frame.decision.faces[0].outcome = DecidedFace::Restricted;
    frame.decision.faces[0].remainingMs = 0;
    const FaceMark mark = faceMarks(frame, shopPlan()).faces.value(0);
    QCOMPARE(mark.note, QStringLiteral("restricted"));
    QCOMPARE(mark.shortNote, QString());
}

/// The plan may have been edited since the frame.
void tst_FaceMarks::contentWithoutEntry()
{
    Plan plan = shopPlan();
    const SeenFrame frame = seenFrame(plan, frameText({Person()}));
    plan.entries.clear();
    const FaceMark mark = faceMarks(frame, plan).faces.value(0);
    QCOMPARE(mark.sequence, 1);
    QCOMPARE(mark.content, QString());
    QVERIFY(mark.color.isValid());
}

void tst_FaceMarks::longNames()
{
    Plan plan = shopPlan();
    plan.entries[0].name = QStringLiteral("two\nlines ").repeated(1000);
    const FaceMark mark = markOf(Person(), plan);
    QVERIFY(mark.content.size() <= 200);
    QVERIFY(mark.content.startsWith(QLatin1String("two lines two")));
}

void tst_FaceMarks::frames_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("nobody");
    QTest::addColumn<QString>("failure");

    const QString woman = frameText({Person()});
    QTest::newRow("one face") << woman << 1 << false << QString();
    QTest::newRow("nobody") << nobodyText() << 0 << true << QString();
    QTest::newRow("a prompt alone") << "Press Space Key to end:\n" << 0 << false << QString();
    QTest::newRow("nothing") << QString() << 0 << false << QString();
    QTest::newRow("failure") << "Failed to open COM port.\r\n"
                             << 0 << false << "Failed to open COM port.";
    QTest::newRow("failure among faces")
        << woman + QStringLiteral("It failed twice\n") << 1 << false << "It failed twice";
    // Faces that are there count more than the number that the program tells.
    QTest::newRow("a face in spite of the count")
        << nobodyText() + woman << 1 << false << QString();
}

void tst_FaceMarks::frames()
{
    QFETCH(QString, text);
    QFETCH(QString, failure);

    const FaceMarks marks = marksOf(text);
    QTEST(marks.count(), "count");
    QTEST(marks.nobody, "nobody");
    QCOMPARE(marks.hasFailed, !failure.isEmpty());
    QCOMPARE(marks.failure, failure);
}

void tst_FaceMarks::manyFaces()
{
    const FaceMarks marks = marksOf(frameText(QVector<Person>(1000)));
    QCOMPARE(marks.faces.size(), FaceMarks::MaxFaces);
    QCOMPARE(marks.leftOut, 1000 - FaceMarks::MaxFaces);
    QCOMPARE(marks.count(), 1000);
}

QTEST_GUILESS_MAIN(tst_FaceMarks)

#include "tst_facemarks.moc"
