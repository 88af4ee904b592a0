// What every target needs before libFuzzer calls it; the replaying tests get it from Qt Test.

#include <QApplication>

#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt warns of odd input, a thousand times a second.
    qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext & /*context*/, const QString &message) {
            if (type == QtFatalMsg)
                std::fprintf(stderr, "%s\n", qUtf8Printable(message));
        });
    // Never destroyed: Qt's platform leaves half of its screen behind.
    static const auto *const application = new QApplication(*argc, *argv);
    Q_UNUSED(application)
    return 0;
}
