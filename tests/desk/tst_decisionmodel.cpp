#include "demo/desk/DecisionModel.h"
#include "tests/desk/SampleFrames.h"

#include <QAbstractItemModelTester>
#include <QFont>
#include <QIcon>
#include <QSignalSpy>
#include <QtTest>

using namespace Analysis;
using namespace Desk;

namespace {

/// Three contents, of which the second one takes no part.
Plan planWithGap(int concurrent = 1)
{
    Plan plan = samplePlan(concurrent);
    PlannedContent closed;
    closed.number = 2;
    closed.name = QStringLiteral("<b>Closed</b>");
    closed.reason = PluginKrHvcP2::EntryReason::NoOwnEvent;
    plan.entries.insert(1, closed);
    plan.entries[2].number = 3;
    plan.contents[1].sequenceNumber = 3;
    return plan;
}

SeenFrame frameOf(const Plan &plan, const QString &text)
{
    return {1, text, Decider(plan).decide(text, sampleTime(0))};
}

/// A row with its heading: "Size|200|100".
QString line(const DecisionModel &model, int row)
{
    QStringList cells{model.headerData(row, Qt::Vertical).toString()};
    for (int column = 0; column < model.columnCount(); ++column)
        cells << model.index(row, column).data().toString();
    return cells.join(QLatin1Char('|'));
}

QStringList lines(const DecisionModel &model)
{
    QStringList lines;
    for (int row = 0; row < model.rowCount(); ++row)
        lines << line(model, row);
    return lines;
}

} // namespace

class tst_DecisionModel : public QObject
{
    Q_OBJECT

private slots:
    void table();
    void marks();
    void nothing();
    void contents();
    void emphasis();
    void runningDown();
    void summary_data();
    void summary();
    void facesComeAndGo();
    void frameOfAnotherPlan();
};

void tst_DecisionModel::table()
{
    const Plan plan = planWithGap();
    DecisionModel model;
    model.setPlan(plan);
    model.setFrame(frameOf(plan,
        sampleFace(1, 100, 8, "Male") + sampleFace(0, 200, 30, "Female")
            + sampleFace(2, 50, 70, "Male")));
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("Face 0"));
    QCOMPARE(model.headerData(2, Qt::Horizontal).toString(), QStringLiteral("Face 2"));
    const QStringList expected{QStringLiteral("Sequence|#1|#3|none"),
        QStringLiteral("Outcome|sent|cut|"), QStringLiteral("Held for|||"),
        QStringLiteral("Gender|female|male|male"), QStringLiteral("Age|30|8|70"),
        QStringLiteral("Size|200|100|50"), QStringLiteral("Size rank|2|1|0"),
        QStringLiteral("Direction|0|0|0"), QStringLiteral("Direction rank|3|3|3"),
        QStringLiteral("Base score|3.5|2.5|1.5"),
        QStringLiteral("#1 Women 20-39|fits|gender|gender"),
        QStringLiteral("#2 <b>Closed</b>|-|-|-"), QStringLiteral("#3 Boys|later|fits|age"),
        QStringLiteral("Bonus|+1.5|+1.5|"), QStringLiteral("Bonus, gender*|||"),
        QStringLiteral("Bonus, age*|||"), QStringLiteral("Score|5|4|1.5")};
    QCOMPARE(lines(model), expected);
    QCOMPARE(model.rowOf(DecisionModel::Content), 10);
    QCOMPARE(model.rowOf(DecisionModel::FitBonus), 13);
}

void tst_DecisionModel::marks()
{
    DecisionModel model;
    model.setPlan(samplePlan());
    QString text = sampleFace(0, 200, 30, "Female");
    text.replace(QStringLiteral("Confidence:500"), QStringLiteral("Confidence:500 *"));
    text.replace(QStringLiteral("Confidence:900"), QStringLiteral("Confidence:900 *"));
    text.replace(QStringLiteral("LR:0 UD:0"), QStringLiteral("LR:-10 UD:2"));
    model.setFrame(frameOf(samplePlan(), text));
    QCOMPARE(line(model, DecisionModel::Gender), QStringLiteral("Gender|female*"));
    QCOMPARE(line(model, DecisionModel::Age), QStringLiteral("Age|30*"));
    QCOMPARE(line(model, DecisionModel::Direction), QStringLiteral("Direction|12"));
    const QStringList all = lines(model);
    const double bonus = model.index(model.rowOf(DecisionModel::FitBonus), 0).data().toDouble();
    const double gender = model.index(model.rowOf(DecisionModel::GenderBonus), 0).data().toDouble();
    const double age = model.index(model.rowOf(DecisionModel::AgeBonus), 0).data().toDouble();
    const double base = model.index(DecisionModel::BaseScore, 0).data().toDouble();
    QVERIFY2(gender > 0 && age > 0, qUtf8Printable(all.join(QLatin1Char('\n'))));
    QCOMPARE(model.index(model.rowOf(DecisionModel::Score), 0).data().toDouble(),
        base + bonus + gender + age);
}

void tst_DecisionModel::nothing()
{
    DecisionModel model;
    QCOMPARE(model.columnCount(), 0);
    QCOMPARE(model.rowCount(), 14);
    QCOMPARE(model.summary(), QString());
    QVERIFY(!model.isRunningDown());
    model.setElapsed(100);
    model.clear();
    QVERIFY(!model.headerData(0, Qt::Horizontal).isValid());
    QVERIFY(!model.headerData(14, Qt::Vertical).isValid());
}

void tst_DecisionModel::contents()
{
    const Plan plan = planWithGap();
    DecisionModel model;
    model.setPlan(plan);
    model.setFrame(frameOf(plan, sampleFace(0, 200, 30, "Female")));
    const int first = model.rowOf(DecisionModel::Content);
    const auto tip = [&model](int row) {
        return model.headerData(row, Qt::Vertical, Qt::ToolTipRole).toString();
    };
    QCOMPARE(tip(first), QStringLiteral("<span>#1 Women 20-39</span>"));
    QCOMPARE(tip(first + 1),
        QStringLiteral(
            "<span>#2 &lt;b&gt;Closed&lt;/b&gt; is not in the table: no own event</span>"));
    QCOMPARE(model.index(first, 0).data(Qt::ToolTipRole).toString(),
        QStringLiteral("taken: the first that fits gender and age"));
    QCOMPARE(
        model.index(first + 1, 0).data(Qt::ToolTipRole).toString(), QStringLiteral("no own event"));
    const QVariant chip = model.headerData(first, Qt::Vertical, Qt::DecorationRole);
    QVERIFY(!chip.value<QIcon>().isNull());
}

void tst_DecisionModel::emphasis()
{
    const Plan plan = samplePlan();
    DecisionModel model;
    model.setPlan(plan);
    model.setFrame(frameOf(plan, sampleFace(0, 200, 30, "Female") + sampleFace(1, 100, 8, "Male")));
    const auto isBold = [&model](int row, int column) {
        return model.index(row, column).data(Qt::FontRole).value<QFont>().bold();
    };
    const int outcome = model.rowOf(DecisionModel::Outcome);
    const int first = model.rowOf(DecisionModel::Content);
    QVERIFY(isBold(outcome, 0));
    QVERIFY(!isBold(outcome, 1));
    QVERIFY(isBold(first, 0));
    QVERIFY(!isBold(first, 1));
    QVERIFY(isBold(first + 1, 1));
    QVERIFY(!isBold(DecisionModel::Age, 0));
    QVERIFY(!model.index(first, 0).data(Qt::ForegroundRole).isValid());
    QVERIFY(model.index(first, 1).data(Qt::ForegroundRole).isValid()); // faint
    QVERIFY(model.index(outcome, 0).data(Qt::ForegroundRole)
        != model.index(outcome, 1).data(Qt::ForegroundRole));
}

void tst_DecisionModel::runningDown()
{
    const Plan plan = samplePlan();
    Decider decider(plan);
    const QString woman = sampleFace(0, 200, 30, "Female");
    decider.decide(woman, sampleTime(0));
    DecisionModel model;
    model.setPlan(plan);
    model.setFrame({2, woman, decider.decide(woman, sampleTime(1000))});
    const int row = model.rowOf(DecisionModel::TimeLeft);
    QCOMPARE(line(model, row), QStringLiteral("Held for|4.0 s"));
    QVERIFY(model.isRunningDown());

    QSignalSpy changed(&model, &DecisionModel::dataChanged);
    model.setElapsed(2500);
    QCOMPARE(line(model, row), QStringLiteral("Held for|1.5 s"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toModelIndex(), model.index(row, 0));
    model.setElapsed(3999);
    QVERIFY(model.isRunningDown());
    model.setElapsed(4000);
    QCOMPARE(line(model, row), QStringLiteral("Held for|over"));
    QVERIFY(!model.isRunningDown());

    model.setFrame({3, woman, decider.decide(woman, sampleTime(2000))});
    QCOMPARE(line(model, row), QStringLiteral("Held for|3.0 s"));
}

void tst_DecisionModel::summary_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("concurrent");
    QTest::addColumn<QString>("expected");

    const QString woman = sampleFace(0, 200, 30, "Female");
    QTest::newRow("one is sent") << woman << 1 << "Sent: #1 Women 20-39";
    QTest::newRow("two are sent") << woman + sampleFace(1, 100, 8, "Male") << 2
                                  << "Sent: #1 Women 20-39, #3 Boys";
    QTest::newRow("nothing fits") << sampleFace(0, 200, 70, "Male") << 1
                                  << "Nothing was sent: no content fits.";
    QTest::newRow("nobody")
        << "Face result count:0\n"
        << 1 << "The sensor program counted no face.\nNothing was sent: there is no face.";
    QTest::newRow("a cut face") << woman.left(
        60) << 1 << "The frame holds no complete face.\nNothing was sent: there is no face.";
    QTest::newRow("a failure")
        << "Failed to open COM3.\n"
        << 1
        << "The sensor program reported a failure:\nFailed to open COM3.\n"
           "The frame holds no complete face.\nNothing was sent: there is no face.";
}

void tst_DecisionModel::summary()
{
    QFETCH(QString, text);
    QFETCH(int, concurrent);

    const Plan plan = planWithGap(concurrent);
    DecisionModel model;
    model.setPlan(plan);
    model.setFrame(frameOf(plan, text));
    QTEST(model.summary(), "expected");
}

void tst_DecisionModel::facesComeAndGo()
{
    const Plan plan = samplePlan();
    DecisionModel model;
    const QAbstractItemModelTester tester(
        &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy reset(&model, &DecisionModel::modelReset);
    model.setPlan(plan);
    const QString woman = sampleFace(0, 200, 30, "Female");
    const QString two = woman + sampleFace(1, 100, 8, "Male");
    for (const QString &text : {woman, two, two, woman, QString(), two}) {
        model.setFrame(frameOf(plan, text));
        QCOMPARE(model.columnCount(), text.count(QStringLiteral("Index:")));
    }
    model.clear();
    QCOMPARE(model.columnCount(), 0);
    QCOMPARE(reset.count(), 1); // where it is scrolled to is not lost
}

/// Nothing is read that is not there.
void tst_DecisionModel::frameOfAnotherPlan()
{
    Plan small = samplePlan();
    small.contents.clear();
    DecisionModel model;
    model.setPlan(samplePlan());
    model.setFrame(frameOf(small, sampleFace(0, 200, 30, "Female")));
    QCOMPARE(line(model, model.rowOf(DecisionModel::Content)), QStringLiteral("#1 Women 20-39|-"));
    model.setPlan(small);
    QCOMPARE(model.columnCount(), 0);
}

QTEST_MAIN(tst_DecisionModel)

#include "tst_decisionmodel.moc"
