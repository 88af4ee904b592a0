#include "Run.h"

#include "tests/support/OwnProcess.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include <limits>
#include <optional>

using namespace Soak;

namespace {

enum ExitStatus { Flat = 0, Grown = 1, BadCommandLine = 2 };

constexpr int FewestFrames = 100;
constexpr int GreatestRate = 1000; // the sensor program counts whole milliseconds
// MiB. At rest the medians of a quarter's samples differ by a fifth of it; a leak of three bytes a
// frame comes to more in half a day.
constexpr double MemoryAllowance = 0.2;

std::optional<int> toNumber(const QString &text, int min, int max)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < min || number > max)
        return std::nullopt;
    return number;
}

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // no display is needed
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false); // dialogs come and go
    // One that is closed before it is told of its activation keeps the focus, and a timer to blink.
    QApplication::setCursorFlashTime(0);

    constexpr int MaxInt = std::numeric_limits<int>::max();
    const Options defaults;
    const QCommandLineOption framesOption(QStringLiteral("frames"),
        QStringLiteral("Run for <N> frames; %1, a day's, without.").arg(defaults.frames),
        QStringLiteral("N"), QString::number(defaults.frames));
    const QCommandLineOption rateOption(QStringLiteral("rate"),
        QStringLiteral("Let the sensor program give <N> frames a second, 1 to %1; %2 without.")
            .arg(GreatestRate)
            .arg(defaults.rate),
        QStringLiteral("N"), QString::number(defaults.rate));
    const QCommandLineOption seedOption(QStringLiteral("seed"),
        QStringLiteral("Let other things happen at other times for each <N>; %1 without.")
            .arg(defaults.seed),
        QStringLiteral("N"), QString::number(defaults.seed));
    const QCommandLineOption anyMemoryOption(
        QStringLiteral("any-memory"), QStringLiteral("Do not judge the memory."));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Runs the plug-in as in a host, with all that a long run meets, and looks whether it grows."
        "\nExit status 0: it has not in the second half; 1: it has, or something went wrong."));
    parser.addHelpOption();
    parser.addOptions({framesOption, rateOption, seedOption, anyMemoryOption});
    parser.process(application);

    const auto frames = toNumber(parser.value(framesOption), FewestFrames, MaxInt);
    const auto rate = toNumber(parser.value(rateOption), 1, GreatestRate);
    const auto seed = toNumber(parser.value(seedOption), 0, MaxInt);
    if (!frames || !rate || !seed || !parser.positionalArguments().isEmpty()) {
        QTextStream(stderr) << "Bad arguments, see --help; there must be " << FewestFrames
                            << " frames at least.\n";
        return BadCommandLine;
    }

    Run run({*frames, *rate, static_cast<quint32>(*seed)});
    QObject::connect(&run, &Run::finished, &application, &QCoreApplication::quit);
    run.start();
    QApplication::exec();

    const bool canTellMemory = KrTest::allocatedMemory() != 0;
    QStringList findings = run.complaints();
    findings += growth(run.samples(),
        canTellMemory && !parser.isSet(anyMemoryOption) ? std::make_optional(MemoryAllowance)
                                                        : std::nullopt);
    QTextStream out(stdout);
    for (const QString &finding : qAsConst(findings))
        out << "FAILED " << finding << '\n';
    if (!findings.isEmpty())
        return Grown;
    out << "Nothing has grown in the second half.\n";
    return Flat;
}
