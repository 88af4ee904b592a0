#include "core/screen/ContentEntry.h"

#include <QtTest>

using namespace PluginKrHvcP2;

Q_DECLARE_METATYPE(PluginKrHvcP2::Audience)

namespace {

/// An entry that the dialog has stored, with @p key of its "params" set to @p value.
QVariantMap entryWith(const QString &key = QString(), const QVariant &value = {})
{
    QVariantMap params{
        {QStringLiteral("age-min"), 20},
        {QStringLiteral("age-max"), 30},
        {QStringLiteral("gender"), QStringLiteral("male")},
        {QStringLiteral("default"), QStringLiteral("false")},
    };
    if (!key.isEmpty())
        params.insert(key, value);
    return {
        {QStringLiteral("name"), QStringLiteral("n")},
        {QStringLiteral("type"), 8},
        {QStringLiteral("params"), params},
    };
}

QVariantMap entryWithout(const QString &key)
{
    QVariantMap entry = entryWith();
    QVariantMap params = entry.value(QStringLiteral("params")).toMap();
    params.remove(key);
    entry.insert(QStringLiteral("params"), params);
    return entry;
}

QVariantMap named(QVariantMap entry, const QVariant &name)
{
    entry.insert(QStringLiteral("name"), name);
    return entry;
}

/// Keys with types and values, which QVariant's own comparison would convert.
QStringList describe(const QVariantMap &map)
{
    QStringList result;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const QString type = QString::fromLatin1(it->typeName());
        if (it->type() == QVariant::Map)
            result.append(
                it.key() + QLatin1String(": ") + describe(it->toMap()).join(QLatin1String(", ")));
        else
            result.append(QStringLiteral("%1 %2 %3").arg(it.key(), type, it->toString()));
    }
    return result;
}

} // namespace

class tst_ContentEntry : public QObject
{
    Q_OBJECT

private slots:
    void changed_data();
    void changed();
    void shownAsDefault_data();
    void shownAsDefault();
    void edited_data();
    void edited();
    void newEntryOfTheDialog();
};

void tst_ContentEntry::changed_data()
{
    QTest::addColumn<QVariantMap>("entry");
    QTest::addColumn<QString>("name");
    QTest::addColumn<Audience>("audience");
    QTest::addColumn<bool>("expected");

    const QString n = QStringLiteral("n");
    const QString ageMin = QStringLiteral("age-min");
    const QString ageMax = QStringLiteral("age-max");
    const QString gender = QStringLiteral("gender");
    const QString isDefault = QStringLiteral("default");
    const Audience male{20, 30, Male, false};
    const Audience defaultMale{20, 30, Male, true};

    QTest::newRow("what is stored") << entryWith() << n << male << false;
    QTest::newRow("another name") << entryWith() << QStringLiteral("m") << male << true;
    QTest::newRow("the name in another letter case")
        << entryWith() << QStringLiteral("N") << male << true;
    QTest::newRow("another lowest age")
        << entryWith() << n << Audience{19, 30, Male, false} << true;
    QTest::newRow("another highest age")
        << entryWith() << n << Audience{20, 31, Male, false} << true;
    QTest::newRow("another gender") << entryWith() << n << Audience{20, 30, Female, false} << true;
    QTest::newRow("a default now") << entryWith() << n << defaultMale << true;

    QTest::newRow("ages as texts are the same")
        << entryWith(ageMin, QStringLiteral("20")) << n << male << false;
    QTest::newRow("a missing lowest age is the lowest")
        << entryWithout(ageMin) << n << Audience{0, 30, Male, false} << false;
    QTest::newRow("a missing highest age is the highest")
        << entryWithout(ageMax) << n << Audience{20, 75, Male, false} << false;
    QTest::newRow("an age that is no number is the lowest")
        << entryWith(ageMin, QStringLiteral("x")) << n << Audience{0, 30, Male, false} << false;
    QTest::newRow("ages beyond what can be entered differ")
        << entryWith(ageMax, 90) << n << Audience{20, 75, Male, false} << true;
    QTest::newRow("a gender in another letter case differs")
        << entryWith(gender, QStringLiteral("Male")) << n << male << true;
    QTest::newRow("a missing gender is the text of an unknown one")
        << entryWithout(gender) << n << Audience{20, 30, UnknownGender, false} << false;
    QTest::newRow("a word for no gender differs from an unknown one")
        << entryWith(gender, QStringLiteral("x")) << n << Audience{20, 30, UnknownGender, false}
        << true;
    QTest::newRow("a default in another letter case is the same")
        << entryWith(isDefault, QStringLiteral("TRUE")) << n << defaultMale << false;
    QTest::newRow("a default as a bool is the same")
        << entryWith(isDefault, true) << n << defaultMale << false;
    QTest::newRow("a default as a number is none") << entryWith(isDefault, 1) << n << male << false;
    QTest::newRow("a missing default is none") << entryWithout(isDefault) << n << male << false;
    QTest::newRow("a name of another type")
        << named(entryWith(), 5) << QStringLiteral("5") << male << false;
    QTest::newRow("a name in params is not the entry's")
        << entryWith(QStringLiteral("name"), QStringLiteral("inner")) << QStringLiteral("inner")
        << male << true;
    QTest::newRow("an empty entry says all ages, no gender and no name")
        << QVariantMap() << QString() << Audience() << false;
}

void tst_ContentEntry::changed()
{
    QFETCH(QVariantMap, entry);
    QFETCH(QString, name);
    QFETCH(Audience, audience);
    QTEST(isChanged(entry, name, audience), "expected");
    // What has been written is no change any more.
    QVERIFY(!isChanged(editedEntry(entry, name, audience), name, audience));
}

void tst_ContentEntry::shownAsDefault_data()
{
    QTest::addColumn<QVariantMap>("entry");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<bool>("conflicting"); // as the rules for conflicts read it

    const QString key = QStringLiteral("default");
    QTest::newRow("true") << entryWith(key, QStringLiteral("true")) << true << true;
    QTest::newRow("TRUE") << entryWith(key, QStringLiteral("TRUE")) << true << true;
    QTest::newRow("a bool") << entryWith(key, true) << true << true;
    QTest::newRow("false") << entryWith(key, QStringLiteral("false")) << false << false;
    QTest::newRow("missing") << entryWithout(key) << false << false;
    QTest::newRow("another word") << entryWith(key, QStringLiteral("yes")) << false << true;
    QTest::newRow("a number") << entryWith(key, 1) << false << true;
}

void tst_ContentEntry::shownAsDefault()
{
    QFETCH(QVariantMap, entry);
    QTEST(isShownAsDefault(entry), "shown");
    QTEST(audienceForEditing(entry).isDefault, "conflicting");
}

void tst_ContentEntry::edited_data()
{
    QTest::addColumn<QVariantMap>("entry");
    QTest::addColumn<QStringList>("expected"); // as "m", women of 40 to 50, default

    const QString params = QStringLiteral(
        "params: age-max int 50, age-min int 40, default QString true, gender QString female");
    const QString name = QStringLiteral("name QString m");
    const QString type = QStringLiteral("type int 8");
    QTest::newRow("an entry of the dialog") << entryWith() << QStringList{name, params, type};
    QTest::newRow("values of other types")
        << named(entryWith(QStringLiteral("age-min"), QStringLiteral("20")), 5)
        << QStringList{name, params, type};
    QTest::newRow("a default as a bool")
        << entryWith(QStringLiteral("default"), true) << QStringList{name, params, type};
    QTest::newRow("foreign params stay")
        << entryWith(QStringLiteral("name"), QStringLiteral("inner"))
        << QStringList{name, params + QStringLiteral(", name QString inner"), type};
    QVariantMap foreign = entryWith();
    foreign.insert(QStringLiteral("host"), 1);
    foreign.insert(QStringLiteral("type"), 9);
    QTest::newRow("foreign keys and the type stay")
        << foreign
        << QStringList{QStringLiteral("host int 1"), name, params, QStringLiteral("type int 9")};
    QTest::newRow("a missing type is not added") << QVariantMap() << QStringList{name, params};
    QTest::newRow("params of another type are replaced")
        << QVariantMap{{QStringLiteral("params"), 5}} << QStringList{name, params};
}

void tst_ContentEntry::edited()
{
    QFETCH(QVariantMap, entry);
    QFETCH(QStringList, expected);
    const QVariantMap edited = editedEntry(entry, QStringLiteral("m"), {40, 50, Female, true});
    QCOMPARE(describe(edited), expected);
}

void tst_ContentEntry::newEntryOfTheDialog()
{
    const QVariantMap entry = newEntry(QStringLiteral("m"), {1, 2, BothGenders, false});
    QCOMPARE(describe(entry),
        QStringList({QStringLiteral("name QString m"),
            QStringLiteral("params: age-max int 2, age-min int 1, default QString false, "
                           "gender QString both"),
            QStringLiteral("type int 8")}));
}

QTEST_GUILESS_MAIN(tst_ContentEntry)

#include "tst_contententry.moc"
