#include "PluginFixture.h"

#include "host/KrPluginGuiInterface.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cstring>

using namespace PluginTest;

// The Itanium C++ ABI says how a pointer to a virtual member function names its slot.
#if defined(__GXX_ABI_VERSION) && !defined(__arm__) && !defined(__aarch64__)
#define KRHVC_HAS_READABLE_SLOTS
#endif

namespace {

#ifdef KRHVC_HAS_READABLE_SLOTS
struct MemberPointer
{
    std::ptrdiff_t slotOffset; // in bytes, plus 1
    std::ptrdiff_t thisOffset;
};

/// The virtual-table slot that @p function stands for; -1 when it is not virtual.
template <typename Function>
int slotOf(Function function)
{
    static_assert(sizeof(function) == sizeof(MemberPointer));
    MemberPointer pointer{};
    std::memcpy(&pointer, &function, sizeof pointer);
    if (pointer.slotOffset % 2 == 0 || pointer.thisOffset != 0)
        return -1;
    return int(pointer.slotOffset / std::ptrdiff_t(sizeof(void *)));
}

/// The function in @p slot of the virtual table, whatever its name is.
template <typename Function>
Function functionAt(int slot)
{
    const MemberPointer pointer{slot * std::ptrdiff_t(sizeof(void *)) + 1, 0};
    Function function = nullptr;
    std::memcpy(&function, &pointer, sizeof pointer);
    return function;
}
#else
template <typename Function>
int slotOf(Function /*function*/)
{
    return -1;
}

template <typename Function>
Function functionAt(int /*slot*/)
{
    return nullptr;
}
#endif

/// Gives one operation of the plug-in's interface, found by its name or by its number.
class Operation
{
public:
    Operation(int number, bool byNumber)
        : m_number(number)
        , m_byNumber(byNumber)
    { }

    template <typename Function>
    Function operator()(Function byName) const
    {
        m_namedSlot = slotOf(byName);
        return m_byNumber ? functionAt<Function>(slot()) : byName;
    }

    /// The destructor, number 0, has two slots.
    int slot() const { return m_number + 1; }
    int namedSlot() const { return m_namedSlot; } ///< of the function that the name stands for

private:
    int m_number;
    bool m_byNumber;
    mutable int m_namedSlot = -1;
};

/// Calls the operation and returns what came of it.
using Call = QVariant (*)(LoadedPlugin &, const Operation &);

QVariant list(const QList<int> &values)
{
    QStringList texts;
    for (const int value : values)
        texts.append(QString::number(value));
    return texts.join(QLatin1Char(' '));
}

/// Runs @p call and returns the signals of that signature that came of it.
template <typename Function>
QVariant emissions(LoadedPlugin &plugin, const char *signal, Function call)
{
    const QSignalSpy spy(plugin.object(), signal);
    call();
    QVariantList result;
    for (const QList<QVariant> &arguments : spy)
        result.append(QVariant(arguments));
    return result;
}

QVariantMap defaultSettings()
{
    return {
        {QStringLiteral("display-monitoring"), false},
        {QStringLiteral("interval"), 500},
        {QStringLiteral("face-detection-confidence"), 0},
        {QStringLiteral("face-direction-confidence"), 0},
        {QStringLiteral("age-confidence"), 0},
        {QStringLiteral("gender-confidence"), 0},
        {QStringLiteral("concurrent"), 1},
        {QStringLiteral("event-sending-limit"), 5000},
    };
}

/// One content for everybody from 20 to 30, which screen 11 follows.
void prepareOneContent(LoadedPlugin &plugin)
{
    plugin.init({{20, 30, QStringLiteral("both"), true}}, {{11, {1}}}, {});
}

template <typename Function>
QVariant requested(LoadedPlugin &plugin, Function function, int argument)
{
    prepareOneContent(plugin);
    return emissions(
        plugin, SIGNAL(contentStarted(int)), [&] { (plugin.get()->*function)(argument); });
}

template <typename Function>
QVariant emitted(LoadedPlugin &plugin, const char *signal, Function function)
{
    return emissions(plugin, signal, [&] { (plugin.get()->*function)(-7); });
}

using Kora::KrPluginStage;

} // namespace

Q_DECLARE_METATYPE(Call)

class tst_Interface : public QObject
{
    Q_OBJECT

private slots:
    void unloadingAndLoadingAgain(); // first: later on others keep the library loaded
    void oneInstanceWhileItLives();
    void aNewInstanceAfterTheDeletion();
    void castsToBothInterfaces();
    void castsThePanel();
    void metacast_data();
    void metacast();
    void className();
    void metaMethods_data();
    void metaMethods();
    void metaMethodCount();
    void operation_data();
    void operation();
    void destructorThroughTheInterface();
    void guiSlot_data();
    void guiSlot();
    void stageSlot_data();
    void stageSlot();
    void itemSlots();
    void dataMembersInOrder();
    void isSameAs_data();
    void isSameAs();
    void descriptionIsThatOfTheMetadata();
    void iconIsTheScaledResource();
    void guiCanBeAskedFor();
    void stageIsCopied();
};

void tst_Interface::unloadingAndLoadingAgain()
{
    for (int round = 0; round < 100; ++round) {
        QPluginLoader loader(QStringLiteral(KRHVC_PLUGIN_FILE));
        const QPointer<QObject> object = loader.instance();
        auto *plugin = qobject_cast<Plugin *>(object.data());
        QVERIFY2(plugin != nullptr, qPrintable(loader.errorString()));
        QCOMPARE(plugin->status(), 199);
        delete plugin->graphicsItem();
        QVERIFY(loader.unload());
        QVERIFY(object.isNull()); // the loader deletes the instance
    }
}

void tst_Interface::oneInstanceWhileItLives()
{
    using Factory = QObject *(*)();
    const auto instance = reinterpret_cast<Factory>(
        QLibrary::resolve(QStringLiteral(KRHVC_PLUGIN_FILE), "qt_plugin_instance"));
    QVERIFY(instance != nullptr);

    const QPointer<QObject> first = instance();
    QVERIFY(!first.isNull());
    QVERIFY(first->parent() == nullptr);
    QCOMPARE(instance(), first.data());
    QCOMPARE(QPluginLoader(QStringLiteral(KRHVC_PLUGIN_FILE)).instance(), first.data());

    auto *plugin = qobject_cast<Plugin *>(first.data());
    QVERIFY(plugin != nullptr);
    plugin->pause();
    QCOMPARE(plugin->status(), 101);
    delete plugin;
    QVERIFY(first.isNull());

    const QPointer<QObject> second = instance();
    QVERIFY(!second.isNull());
    QCOMPARE(qobject_cast<Plugin *>(second.data())->status(), 199);
    delete second.data();
}

void tst_Interface::aNewInstanceAfterTheDeletion()
{
    QPluginLoader loader(QStringLiteral(KRHVC_PLUGIN_FILE));
    const QPointer<QObject> first = loader.instance();
    QVERIFY(!first.isNull());
    qobject_cast<Plugin *>(first.data())->setPath(QStringLiteral("somewhere"));
    delete first.data();

    const QPointer<QObject> second = loader.instance();
    QVERIFY(!second.isNull());
    QCOMPARE(qobject_cast<Plugin *>(second.data())->path(), QString());
    delete second.data();
}

void tst_Interface::castsToBothInterfaces()
{
    const LoadedPlugin plugin;
    auto *common = qobject_cast<Kora::KrPluginCommonInterface *>(plugin.object());
    auto *screen = qobject_cast<Kora::KrPluginExtScreenInterface *>(plugin.object());
    QVERIFY(screen != nullptr);
    QCOMPARE(common, static_cast<Kora::KrPluginCommonInterface *>(screen));
    QCOMPARE(screen->object(), plugin.object());
    QCOMPARE(QByteArray(qobject_interface_iid<Kora::KrPluginCommonInterface *>()),
        QByteArrayLiteral("com.velmora.kora.plugin.CommonInterface/1.0"));
    QCOMPARE(QByteArray(qobject_interface_iid<Kora::KrPluginExtScreenInterface *>()),
        QByteArrayLiteral("com.velmora.kora.plugin.ExtScreenInterface/1.0"));
}

void tst_Interface::castsThePanel()
{
    const LoadedPlugin plugin;
    auto *object = dynamic_cast<QObject *>(plugin->graphicsItem());
    QVERIFY(object != nullptr);
    QCOMPARE(qobject_cast<Item *>(object), plugin->graphicsItem());
    QVERIFY(qobject_cast<Item *>(plugin.object()) == nullptr);
}

void tst_Interface::metacast_data()
{
    enum Answer { Nothing, Object, Interface };
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("expected");

    QTest::newRow("its class name") << QByteArrayLiteral("PluginKrHvcP2::KrHvcP2") << int(Object);
    QTest::newRow("the interface's unqualified name")
        << QByteArrayLiteral("KrPluginExtScreenInterface") << int(Interface);
    QTest::newRow("the common interface's identifier")
        << QByteArrayLiteral("com.velmora.kora.plugin.CommonInterface/1.0") << int(Interface);
    QTest::newRow("the interface's identifier")
        << QByteArrayLiteral("com.velmora.kora.plugin.ExtScreenInterface/1.0") << int(Interface);
    QTest::newRow("its base class") << QByteArrayLiteral("QObject") << int(Object);
    QTest::newRow("its unqualified class name") << QByteArrayLiteral("KrHvcP2") << int(Nothing);
    QTest::newRow("another version of the interface")
        << QByteArrayLiteral("com.velmora.kora.plugin.ExtScreenInterface/1.1") << int(Nothing);
    QTest::newRow("an identifier in another case")
        << QByteArrayLiteral("com.velmora.kora.plugin.extscreeninterface/1.0") << int(Nothing);
    QTest::newRow("another interface") << QByteArrayLiteral("KrPluginGuiInterface") << int(Nothing);
    QTest::newRow("an empty name") << QByteArray("") << int(Nothing);
}

void tst_Interface::metacast()
{
    QFETCH(QByteArray, name);
    QFETCH(int, expected);
    const LoadedPlugin plugin;
    void *const answers[] = {nullptr, plugin.object(), plugin.get()};
    QVERIFY(answers[1] != answers[2]);
    QCOMPARE(plugin.object()->qt_metacast(name.constData()), answers[expected]);
}

void tst_Interface::className()
{
    const LoadedPlugin plugin;
    QCOMPARE(QByteArray(plugin.object()->metaObject()->className()),
        QByteArrayLiteral("PluginKrHvcP2::KrHvcP2"));
    QCOMPARE(QByteArray(plugin.object()->metaObject()->superClass()->className()),
        QByteArrayLiteral("QObject"));
}

void tst_Interface::metaMethods_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("isSignal");
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QByteArray>("parameters");

    int index = 0;
    const auto row = [&index](bool isSignal, const char *signature, const char *parameters) {
        QTest::newRow(signature) << index++ << isSignal << QByteArray(signature)
                                 << QByteArray(parameters);
    };
    row(true, "throwLogMessage(QString,int)", "message,LogDivision");
    row(true, "contentStarted(int)", "seqIndex");
    row(true, "contentPaused(int)", "seqIndex");
    row(true, "contnetStopped(int)", "seqIndex");
    row(true, "contentFinished(int)", "seqIndex");
    row(true, "contentHeadTransFinished(int)", "seqIndex");
    row(true, "contentTailTransStarted(int)", "seqIndex");
    row(true, "contentTimeout(int,QTime)", "seqIndex,time");
    row(false, "onDataReceived(QString)", "data");
    row(false, "sendLogMessage(QString,LogDivision)", "message,logDivision");
    row(false, "sendStartedEvents(QList<CalculatedData>)", "calcedList");
    row(false, "onScreenValuesUpdated(int,QList<int>)", "screenId,seqIndexList");
    row(false, "onFailedToStart(QString)", "msg");
    row(false, "onErrorOccured(QString)", "msg");
    row(false, "onCriticalErrorOccured(QString)", "msg");
    row(false, "onStarted()", "");
    row(false, "onStopped()", "");
}

void tst_Interface::metaMethods()
{
    QFETCH(int, index);
    QFETCH(bool, isSignal);
    QFETCH(QByteArray, signature);
    QFETCH(QByteArray, parameters);
    const LoadedPlugin plugin;
    const QMetaObject *meta = plugin.object()->metaObject();
    const QMetaMethod method = meta->method(meta->methodOffset() + index);
    QCOMPARE(method.methodSignature(), signature);
    QCOMPARE(method.parameterNames().join(','), parameters);
    QCOMPARE(method.typeName(), "void");
    QCOMPARE(method.methodType(), isSignal ? QMetaMethod::Signal : QMetaMethod::Slot);
    QCOMPARE(method.access(), isSignal ? QMetaMethod::Public : QMetaMethod::Private);
}

void tst_Interface::metaMethodCount()
{
    const LoadedPlugin plugin;
    const QMetaObject *meta = plugin.object()->metaObject();
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 17);
    QCOMPARE(meta->propertyCount() - meta->propertyOffset(), 0);
    QCOMPARE(meta->constructorCount(), 0);
}

// What a host relies on: which number stands for which operation, and what it answers.
// clang-format off
void tst_Interface::operation_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<Call>("call");
    QTest::addColumn<QVariant>("expected");

    const auto row = [](int number, const char *name, const QVariant &expected, Call call) {
        QTest::newRow(name) << number << call << expected;
    };
    const QVariant seven = QVariantList{QVariant(QVariantList{-7})};
    const QVariant firstSent = QVariantList{QVariant(QVariantList{0})};

    row(1, "1: the name", QStringLiteral("KrHvcP2"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::name))();
        });
    row(2, "2: the path that was set", QStringLiteral("/some/where"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            plugin->setPath(QStringLiteral("/some/where"));
            return (plugin.get()->*at(&Plugin::path))();
        });
    row(3, "3: sets the path", QStringLiteral("/else where"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            (plugin.get()->*at(&Plugin::setPath))(QStringLiteral("/else where"));
            return plugin->path();
        });
    row(4, "4: the API level", 1, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        return (plugin.get()->*at(&Plugin::apiLevel))();
    });
    row(5, "5: the identifier", QStringLiteral("com.velmora.kora.plugin.KrHvcP2"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::identifier))();
        });
    row(6, "6: the version", QStringLiteral("1.0"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::version))();
        });
    row(7, "7: is the same as its identifier with its version", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::isSameAs))(
                QStringLiteral("com.velmora.kora.plugin.KrHvcP2/1.0"));
        });
    row(8, "8: has a graphics item", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::hasGraphicsItem))();
        });
    row(9, "9: the kind", 3, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        return (plugin.get()->*at(&Plugin::kind))();
    });
    row(10, "10: the settings as a map", defaultSettings(),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::params))();
        });
    row(11, "11: has settings", true, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        return (plugin.get()->*at(&Plugin::hasParams))();
    });
    row(12, "12: the object itself", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::object))() == plugin.object();
        });
    row(13, "13: the short name", QStringLiteral("krhvcp2"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::shortName))();
        });
    row(14, "14: the name to show", QStringLiteral("OMRON(R) HVC-P2 Plugin"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::displayName))();
        });
    row(15, "15: the description",
        QStringLiteral("This plug-in is intended to use \"OMRON(R) Human Vision Conponents\""
                       " on Parvista.\n"
                       "To use PC, one of the following equipment must be installed.\n\n"
                       "B5T-007001-010, B5T-007001-010"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::description))();
        });
    row(16, "16: signal throwLogMessage",
        QVariantList{QVariant(QVariantList{QStringLiteral("a message"), 3})},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return emissions(plugin, SIGNAL(throwLogMessage(QString,int)), [&] {
                (plugin.get()->*at(&Plugin::throwLogMessage))(QStringLiteral("a message"), 3);
            });
        });
    row(17, "17: one graphics item, created on the first call", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            Item *item = (plugin.get()->*at(&Plugin::graphicsItem))();
            return item != nullptr && item == plugin->graphicsItem()
                && item->rect() == QRectF(0, 0, 512, 384);
        });
    row(18, "18: no property widget", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::propertyWidget))() == nullptr;
        });
    row(19, "19: hands the graphics item over and makes a new one then", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            const std::unique_ptr<Item> released(plugin->graphicsItem());
            (plugin.get()->*at(&Plugin::releaseGraphicsItem))();
            return plugin->graphicsItem() != released.get();
        });
    row(20, "20: releases the property widget", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            (plugin.get()->*at(&Plugin::releasePropertyWidget))();
            return plugin->propertyWidget() == nullptr;
        });
    row(21, "21: the GUI, the same at each call", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::gui))() == plugin->gui();
        });
    row(22, "22: takes settings", 2000, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        (plugin.get()->*at(&Plugin::setParams))({{QStringLiteral("Interval"), 2000}});
        return plugin->params().toMap().value(QStringLiteral("interval"));
    });
    row(23, "23: writes the settings as XML",
        QStringLiteral("true <plugindata display-monitoring=\"false\" interval=\"500\""
                       " face-detection-confidence=\"0\" face-direction-confidence=\"0\""
                       " age-confidence=\"0\" gender-confidence=\"0\" concurrent=\"1\""
                       " event-sending-limit=\"5000\"/>"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            QString text;
            QXmlStreamWriter writer(&text);
            const bool ok = (plugin.get()->*at(&Plugin::writeXml))(writer);
            return QString((ok ? QStringLiteral("true ") : QStringLiteral("false ")) + text);
        });
    row(24, "24: keys and values of a content entry",
        QVariantList{QStringLiteral("params"), QVariantMap{{QStringLiteral("name"), 1}},
                     QStringLiteral("type"), 8},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            const QVariantMap entry{
                {QStringLiteral("type"), 8},
                {QStringLiteral("params"), QVariantMap{{QStringLiteral("name"), 1}}},
            };
            plugin->setPluginData(QVariantMap{{QStringLiteral("contents"), QVariantList{entry}}});
            QVariantList flat;
            const auto pairs = (plugin.get()->*at(&Plugin::contentProperties))(0);
            for (const QPair<QString, QVariant> &pair : pairs)
                flat << pair.first << pair.second;
            return flat;
        });
    row(25, "25: takes the stage that init looks at", firstSent,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            (plugin.get()->*at(&Plugin::setStage))(linkedStage({{11, {1}}}));
            plugin->setPluginData(screenData({{20, 30, QStringLiteral("both"), true}}));
            plugin->init();
            return emissions(plugin, SIGNAL(contentStarted(int)), [&] {
                plugin->requestSequenceIndex(0);
            });
        });
    row(26, "26: takes the screen's data", QStringLiteral("data"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            (plugin.get()->*at(&Plugin::setPluginData))(QStringLiteral("data"));
            return plugin->pluginData();
        });
    row(27, "27: gives the screen's data back", QVariantMap{{QStringLiteral("id"), 5}},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            plugin->setPluginData(QVariantMap{{QStringLiteral("id"), 5}});
            return (plugin.get()->*at(&Plugin::pluginData))();
        });
    row(28, "28: first capability", true, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        return (plugin.get()->*at(&Plugin::canStart))();
    });
    row(29, "29: second capability", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::canStop))();
        });
    row(30, "30: third capability", true, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        return (plugin.get()->*at(&Plugin::canPause))();
    });
    row(31, "31: initializes", QVariantList{true, 110},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            const bool ok = (plugin.get()->*at(&Plugin::init))();
            return QVariantList{ok, plugin->status()};
        });
    row(32, "32: refuses to start before it is initialized", QVariantList{false, 199},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            const bool ok = (plugin.get()->*at(&Plugin::start))();
            return QVariantList{ok, plugin->status()};
        });
    row(33, "33: stops", QVariantList{true, 104},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            plugin->init();
            const bool ok = (plugin.get()->*at(&Plugin::stop))();
            return QVariantList{ok, plugin->status()};
        });
    row(34, "34: pauses", QVariantList{true, 101},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            const bool ok = (plugin.get()->*at(&Plugin::pause))();
            return QVariantList{ok, plugin->status()};
        });
    row(35, "35: reloads", QVariantList{true, 199, QStringLiteral("Reloaded.")},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            PanelRecorder &panel = plugin.panel();
            const bool ok = (plugin.get()->*at(&Plugin::reload))();
            [&] { QTRY_VERIFY(!panel.statusTexts().isEmpty()); }();
            return QVariantList{ok, plugin->status(), panel.statusTexts().join(QLatin1Char('|'))};
        });
    row(36, "36: first notification, without effect", 199,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            (plugin.get()->*at(&Plugin::onScreenEntered))();
            return plugin->status();
        });
    row(37, "37: second notification, without effect", 199,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            (plugin.get()->*at(&Plugin::onScreenLeft))();
            return plugin->status();
        });
    row(38, "38: requests by number, counted from 1", firstSent,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return requested(plugin, at(&Plugin::requestSequenceNumber), 1);
        });
    row(39, "39: requests by index, counted from 0", firstSent,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return requested(plugin, at(&Plugin::requestSequenceIndex), 0);
        });
    row(40, "40: the current number, 0 before one was sent", QVariantList{0, 1},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            prepareOneContent(plugin);
            const int before = (plugin.get()->*at(&Plugin::currentSequenceNumber))();
            plugin->requestSequenceIndex(0);
            return QVariantList{before, (plugin.get()->*at(&Plugin::currentSequenceNumber))()};
        });
    row(41, "41: the current index, -1 before one was sent", QVariantList{-1, 0},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            prepareOneContent(plugin);
            const int before = (plugin.get()->*at(&Plugin::currentSequenceIndex))();
            plugin->requestSequenceIndex(0);
            return QVariantList{before, (plugin.get()->*at(&Plugin::currentSequenceIndex))()};
        });
    row(42, "42: fourth capability", 1, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        return (plugin.get()->*at(&Plugin::sequenceControlLevel))();
    });
    row(43, "43: fifth capability", 0, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        return (plugin.get()->*at(&Plugin::timeControlLevel))();
    });
    row(44, "44: the status", 199, [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
        return (plugin.get()->*at(&Plugin::status))();
    });
    row(45, "45: default data for a new screen", QVariantList{false, true, 1000, 2},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            const auto makeDefault = at(&Plugin::makeDefaultPluginData);
            QVariant data;
            const bool intoNothing = (plugin.get()->*makeDefault)(nullptr);
            const bool intoData = (plugin.get()->*makeDefault)(&data);
            const QVariantMap screen = data.toMap();
            return QVariantList{intoNothing, intoData,
                screen.value(QStringLiteral("plugindata")).toMap()
                    .value(QStringLiteral("interval")),
                screen.value(QStringLiteral("contents")).toList().size()};
        });
    row(46, "46: one supported type", QStringLiteral("2"),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return list((plugin.get()->*at(&Plugin::supportedTypes))());
        });
    row(47, "47: no extra types", QString(QStringLiteral("")),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return list((plugin.get()->*at(&Plugin::extraTypes))());
        });
    row(48, "48: an icon of height 24", 24,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::icon))().height();
        });
    row(49, "49: the log's directory, named like the plug-in", true,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return (plugin.get()->*at(&Plugin::logSetting))() == plugin.logDirectory();
        });
    row(50, "50: takes the log's directory unless it is empty", QString(QStringLiteral("")),
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            (plugin.get()->*at(&Plugin::setLogSetting))(QString());
            return plugin->logSetting();
        });
    row(51, "51: signal contentStarted", seven,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return emitted(plugin, SIGNAL(contentStarted(int)), at(&Plugin::contentStarted));
        });
    row(52, "52: signal contentPaused", seven,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return emitted(plugin, SIGNAL(contentPaused(int)), at(&Plugin::contentPaused));
        });
    row(53, "53: signal contnetStopped", seven,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return emitted(plugin, SIGNAL(contnetStopped(int)), at(&Plugin::contnetStopped));
        });
    row(54, "54: signal contentFinished", seven,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return emitted(plugin, SIGNAL(contentFinished(int)), at(&Plugin::contentFinished));
        });
    row(55, "55: signal contentHeadTransFinished", seven,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return emitted(plugin, SIGNAL(contentHeadTransFinished(int)),
                at(&Plugin::contentHeadTransFinished));
        });
    row(56, "56: signal contentTailTransStarted", seven,
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return emitted(plugin, SIGNAL(contentTailTransStarted(int)),
                at(&Plugin::contentTailTransStarted));
        });
    row(57, "57: signal contentTimeout", QVariantList{QVariant(QVariantList{-7, QTime(1, 2, 3)})},
        [](LoadedPlugin &plugin, const Operation &at) -> QVariant {
            return emissions(plugin, SIGNAL(contentTimeout(int,QTime)), [&] {
                (plugin.get()->*at(&Plugin::contentTimeout))(-7, QTime(1, 2, 3));
            });
        });
}
// clang-format on

void tst_Interface::operation()
{
    QFETCH(int, number);
    QFETCH(Call, call);
    QFETCH(QVariant, expected);
    {
        LoadedPlugin plugin;
        QCOMPARE(call(plugin, Operation(number, false)), expected);
    }
#ifdef KRHVC_HAS_READABLE_SLOTS
    LoadedPlugin plugin;
    const Operation byNumber(number, true);
    QCOMPARE(call(plugin, byNumber), expected);
    QCOMPARE(byNumber.namedSlot(), byNumber.slot());
#endif
}

void tst_Interface::destructorThroughTheInterface()
{
    const LoadedPlugin plugin;
    const QPointer<QObject> object = plugin.object();
    delete plugin.get();
    QVERIFY(object.isNull());
#ifdef KRHVC_HAS_READABLE_SLOTS
    const LoadedPlugin other;
    const QPointer<QObject> otherObject = other.object();
    (other.get()->*functionAt<void (Plugin::*)()>(1))(); // the one that frees the memory as well
    QVERIFY(otherObject.isNull());
#endif
}

void tst_Interface::guiSlot_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<int>("expected");

    using Gui = Kora::KrPluginGuiInterface;
    QTest::newRow("0") << slotOf(&Gui::hasScreenPropertyWidget) << 0;
    QTest::newRow("1") << slotOf(&Gui::screenPropertyKind) << 1;
    QTest::newRow("2") << slotOf(&Gui::hasStagePropertyWidget) << 2;
    QTest::newRow("3") << slotOf(&Gui::hasScreenPropertyDialog) << 3;
    QTest::newRow("screenPropertyWidget") << slotOf(&Gui::screenPropertyWidget) << 4;
    QTest::newRow("execScreenPropertyDialog") << slotOf(&Gui::execScreenPropertyDialog) << 5;
    QTest::newRow("6") << slotOf(&Gui::hasPluginPropertyActions) << 6;
    QTest::newRow("pluginPropertyActions") << slotOf(&Gui::pluginPropertyActions) << 7;
    QTest::newRow("8") << slotOf(&Gui::canEditContents) << 8;
    QTest::newRow("maximumContentCount") << slotOf(&Gui::maximumContentCount) << 9;
    QTest::newRow("10") << slotOf(&Gui::contentKind) << 10;
    QTest::newRow("11") << slotOf(&Gui::canReorderContents) << 11;
    QTest::newRow("12") << slotOf(&Gui::hasContentPropertyWidget) << 12;
    QTest::newRow("contentPropertyWidget") << slotOf(&Gui::contentPropertyWidget) << 13;
    QTest::newRow("execContentPropertyDialog") << slotOf(&Gui::execContentPropertyDialog) << 14;
    QTest::newRow("15") << slotOf(&Gui::canAddContents) << 15;
    QTest::newRow("addContentActions") << slotOf(&Gui::addContentActions) << 16;
    QTest::newRow("pluginData") << slotOf(&Gui::pluginData) << 17;
    QTest::newRow("setPluginData") << slotOf(&Gui::setPluginData) << 18;
    QTest::newRow("stage") << slotOf(&Gui::stage) << 19;
    QTest::newRow("setStage") << slotOf(&Gui::setStage) << 20;
    QTest::newRow("object") << slotOf(&Gui::object) << 21;
    QTest::newRow("screenValuesUpdated") << slotOf(&Gui::screenValuesUpdated) << 22;
    QTest::newRow("stageValuesUpdated") << slotOf(&Gui::stageValuesUpdated) << 23;
    QTest::newRow("requestAddContents") << slotOf(&Gui::requestAddContents) << 24;
}

void tst_Interface::guiSlot()
{
#ifndef KRHVC_HAS_READABLE_SLOTS
    QSKIP("the slots cannot be read with this compiler");
#endif
    QFETCH(int, slot);
    QFETCH(int, expected);
    QCOMPARE(slot, expected);
}

void tst_Interface::stageSlot_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<int>("expected");

    // The destructor has the first two.
    QTest::newRow("screens") << slotOf(&KrPluginStage::screens) << 2;
    QTest::newRow("setScreens") << slotOf(&KrPluginStage::setScreens) << 3;
    QTest::newRow("contents") << slotOf(&KrPluginStage::contents) << 4;
    QTest::newRow("setContents") << slotOf(&KrPluginStage::setContents) << 5;
}

void tst_Interface::stageSlot()
{
    guiSlot();
}

void tst_Interface::itemSlots()
{
#ifndef KRHVC_HAS_READABLE_SLOTS
    QSKIP("the slots cannot be read with this compiler");
#else
    struct Base : QGraphicsRectItem
    {
        static int lastSlot() { return slotOf(&Base::extension); }
    };
    using ByNumbers = void (Item::*)(qreal, qreal);
    using BySize = void (Item::*)(const QSizeF &);
    const int last = Base::lastSlot();
    QVERIFY(last > 0);
    QCOMPARE(slotOf<ByNumbers>(&Item::setItemSize), last + 1);
    QCOMPARE(slotOf<BySize>(&Item::setItemSize), last + 2);

    const LoadedPlugin plugin;
    Item *item = plugin->graphicsItem();
    (item->*functionAt<ByNumbers>(last + 1))(300, 200);
    QCOMPARE(item->rect(), QRectF(0, 0, 300, 200));
    (item->*functionAt<BySize>(last + 2))(QSizeF(640, 480));
    QCOMPARE(item->rect(), QRectF(0, 0, 640, 480));
#endif
}

void tst_Interface::dataMembersInOrder()
{
#ifndef KRHVC_HAS_READABLE_SLOTS
    QSKIP("the offsets cannot be read with this compiler");
#else
    struct Offsets : Plugin
    {
        static std::ptrdiff_t of(const void *memberPointer)
        {
            std::ptrdiff_t offset = 0;
            std::memcpy(&offset, memberPointer, sizeof offset);
            return offset;
        }
        static QVector<std::ptrdiff_t> all()
        {
            const auto name = &Offsets::m_name;
            const auto path = &Offsets::m_path;
            const auto apiLevel = &Offsets::m_apiLevel;
            const auto identifier = &Offsets::m_identifier;
            const auto version = &Offsets::m_version;
            const auto kind = &Offsets::m_kind;
            const auto graphicsItem = &Offsets::m_graphicsItem;
            const auto propertyWidget = &Offsets::m_propertyWidget;
            const auto stage = &Offsets::m_stage;
            const auto pluginData = &Offsets::m_pluginData;
            const auto logSetting = &Offsets::m_logSetting;
            return {of(&name), of(&path), of(&apiLevel), of(&identifier), of(&version), of(&kind),
                of(&graphicsItem), of(&propertyWidget), of(&stage), of(&pluginData),
                of(&logSetting)};
        }
    };
    const QVector<std::ptrdiff_t> offsets = Offsets::all();
    QVector<std::ptrdiff_t> sorted = offsets;
    std::sort(sorted.begin(), sorted.end());
    QCOMPARE(offsets, sorted);
    QCOMPARE(offsets.first(), std::ptrdiff_t(sizeof(void *))); // right behind the virtual table
    QCOMPARE(sizeof(KrPluginStage), 3 * sizeof(void *)); // two maps
#endif
}

void tst_Interface::isSameAs_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<bool>("expected");

    QTest::newRow("identifier and version")
        << QStringLiteral("com.velmora.kora.plugin.KrHvcP2/1.0") << true;
    QTest::newRow("in upper case") << QStringLiteral("COM.VELMORA.KORA.PLUGIN.KRHVCP2/1.0") << true;
    QTest::newRow("another version")
        << QStringLiteral("com.velmora.kora.plugin.KrHvcP2/1.1") << false;
    QTest::newRow("the version of the metadata")
        << QStringLiteral("com.velmora.kora.plugin.KrHvcP2/1.0.0") << false;
    QTest::newRow("no version") << QStringLiteral("com.velmora.kora.plugin.KrHvcP2") << false;
    QTest::newRow("an empty version")
        << QStringLiteral("com.velmora.kora.plugin.KrHvcP2/") << false;
    QTest::newRow("another plug-in")
        << QStringLiteral("com.velmora.kora.plugin.KrHvcP3/1.0") << false;
    QTest::newRow("blanks around it")
        << QStringLiteral(" com.velmora.kora.plugin.KrHvcP2/1.0 ") << false;
    QTest::newRow("nothing") << QString() << false;
}

void tst_Interface::isSameAs()
{
    QFETCH(QString, id);
    QFETCH(bool, expected);
    const LoadedPlugin plugin;
    QCOMPARE(plugin->isSameAs(id), expected);
}

void tst_Interface::descriptionIsThatOfTheMetadata()
{
    const QJsonArray lines = QPluginLoader(QStringLiteral(KRHVC_PLUGIN_FILE))
                                 .metaData()
                                 .value(QStringLiteral("MetaData"))
                                 .toObject()
                                 .value(QStringLiteral("Description"))
                                 .toArray();
    QCOMPARE(lines.size(), 3);
    const LoadedPlugin plugin;
    QCOMPARE(plugin->description(),
        QString(lines.at(0).toString() + QLatin1Char('\n') + lines.at(1).toString()
            + QStringLiteral("\n\n") + lines.at(2).toString()));
}

void tst_Interface::iconIsTheScaledResource()
{
    const LoadedPlugin plugin;
    const QImage source(QStringLiteral(":/images/human.svg"));
    QVERIFY(!source.isNull());
    QCOMPARE(plugin->icon(), source.scaledToHeight(24, Qt::SmoothTransformation));
}

void tst_Interface::guiCanBeAskedFor()
{
    const LoadedPlugin plugin;
    QCOMPARE(plugin->gui(), plugin->gui());
}

void tst_Interface::stageIsCopied()
{
    LoadedPlugin plugin;
    const QSignalSpy started(plugin.object(), SIGNAL(contentStarted(int)));
    {
        Kora::KrPluginStage stage = linkedStage({{11, {1}}});
        plugin->setStage(stage);
        stage.setScreens({}); // the plug-in has its own by now
    }
    plugin->setPluginData(screenData({{20, 30, QStringLiteral("female"), false}}));
    plugin->init();
    plugin->requestSequenceIndex(0);
    QCOMPARE(started.size(), 1);
}

QTEST_MAIN(tst_Interface)
#include "tst_interface.moc"
