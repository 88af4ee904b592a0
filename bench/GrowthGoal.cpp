#include "Frames.h"
#include "Goals.h"
#include "Report.h"

#include "detection/Determination.h"
#include "detection/SendRestriction.h"
#include "detection/SensorOutputParser.h"
#include "tests/support/LinkedStage.h"

#include <algorithm>
#include <functional>
#include <memory>

namespace Bench {

using namespace PluginKrHvcP2;

namespace {

constexpr double Bar = 2.3;
constexpr double RunUs = 40000; // what the pairs of one run may take, unless they are few
constexpr int FewestPairs = 11;
constexpr int MostPairs = 51;
constexpr int Mebibyte = 1024 * 1024;

/// What becomes of the costs of something when it becomes twice as much.
struct Series
{
    QString name;
    int first = 1;
    int last = 4096; ///< first times a power of two
    std::function<Step(int)> make; ///< the work for so much of it
};

Comparison compareDouble(const Series &series, int count)
{
    const Step one = series.make(count);
    const Step two = series.make(2 * count);
    const int times = repetitions(one);
    const Step several = repeated(one, times);
    const Comparison estimate
        = compare({{several}, {}}, {{several}, {}}, 1).front(); // also warms up
    const int pairs = static_cast<int>(
        std::clamp(RunUs / (3 * estimate.yardstick), double{FewestPairs}, double{MostPairs}));
    const Comparison worst = compare({{repeated(two, times)}, {}}, {{several}, {}}, pairs).front();
    return {worst.ours / times, worst.yardstick / times};
}

void measureSeries(Report &report, const Series &series)
{
    Comparison worst;
    int worstCount = 0;
    for (int count = series.first; count < series.last; count *= 2) {
        const Comparison next = compareDouble(series, count);
        if (worstCount == 0 || next.ratio() > worst.ratio()) {
            worst = next;
            worstCount = count;
        }
    }
    report.addRatio(QStringLiteral("P5"),
        QStringLiteral("%1, worst at %2 to %3")
            .arg(series.name)
            .arg(worstCount)
            .arg(2 * worstCount),
        worst, Bar);
}

Step decideFaces(int faces)
{
    return [text = chunk(faces), contents = contentTable(20)] {
        const SensorFrame frame = SensorOutputParser::parse(text, {});
        determineSequences(frame.faces, frame.sizes, frame.directionValues, contents);
    };
}

Step decideContents(int count)
{
    return [frame = SensorOutputParser::parse(chunk(10), {}), contents = contentTable(count)] {
        determineSequences(frame.faces, frame.sizes, frame.directionValues, contents);
    };
}

Step readTable(int contents, int links)
{
    return [map = KrTest::linkedScreen(contents),
               screens = KrTest::linkedStage(contents, links).screens()] {
        detectionTable(map, screens);
    };
}

Step admit(int identifiers)
{
    QList<int> keys;
    for (int key = 0; key < identifiers; ++key)
        keys.append(key);
    auto restriction = std::make_shared<SendRestriction>();
    return [=, now = QDateTime::currentDateTimeUtc()] { restriction->admit(keys, now, 0); };
}

/// Parses @p part again and again, up to @p size characters.
Step parseText(const QString &part, int size)
{
    return [text = part.repeated(size / part.size())] { SensorOutputParser::parse(text, {}); };
}

} // namespace

void measureGrowth(Report &report)
{
    measureSeries(report, {QStringLiteral("faces"), 5, 5120, &decideFaces});
    measureSeries(report, {QStringLiteral("contents decided on"), 1, 4096, &decideContents});
    measureSeries(report,
        {QStringLiteral("contents"), 1, 4096, [](int count) { return readTable(count, 1); }});
    measureSeries(
        report, {QStringLiteral("links"), 1, 4096, [](int count) { return readTable(1, count); }});
    measureSeries(report, {QStringLiteral("identifiers"), 1, 4096, &admit});
    measureSeries(report,
        {QStringLiteral("chunk of lines, bytes"), 1024, 4 * Mebibyte,
            [](int size) { return parseText(QStringLiteral("A note\tof 16\r\n.."), size); }});
    measureSeries(report,
        {QStringLiteral("chunk of one line, bytes"), 1024, 4 * Mebibyte,
            [](int size) { return parseText(QStringLiteral("f"), size); }});
}

} // namespace Bench
