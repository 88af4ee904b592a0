#include "Frames.h"
#include "Goals.h"
#include "Report.h"

#include "detection/Determination.h"
#include "detection/SensorOutputParser.h"
#include "tests/oracle/PlainDecision.h"

#include <algorithm>
#include <utility>

namespace Bench {

using namespace PluginKrHvcP2;

namespace {

constexpr int RandomChunks = 5000;

struct Outcome
{
    QString html;
    QList<CalculatedData> sequences; // the most prominent viewer first
};

Outcome decide(const QString &chunk, const QDateTime &time, const DetectionContents &contents)
{
    const SensorFrame frame = SensorOutputParser::parse(chunk, time);
    return {
        frame.html, determineSequences(frame.faces, frame.sizes, frame.directionValues, contents)};
}

Outcome decidePlainly(
    const QString &chunk, const QDateTime &time, const DetectionContents &contents)
{
    Oracle::PlainFrame frame = Oracle::parse(chunk, time);
    const QString html = frame.html;
    return {html, Oracle::determine(std::move(frame), contents)};
}

bool isSame(const CalculatedData &a, const CalculatedData &b)
{
    return a.faceIndex == b.faceIndex && qFuzzyCompare(a.score, b.score)
        && a.seqNumber == b.seqNumber && a.restrictionKeys == b.restrictionKeys && a.time == b.time;
}

bool isSame(const Outcome &a, const Outcome &b)
{
    return a.html == b.html
        && std::equal(a.sequences.cbegin(), a.sequences.cend(), b.sequences.cbegin(),
            b.sequences.cend(), [](const CalculatedData &left, const CalculatedData &right) {
                return isSame(left, right);
            });
}

/// Two that do not do the same must not be compared.
void checkSameOutcome(const QDateTime &time)
{
    std::mt19937 random; // the same chunks in every run
    for (int i = 0; i < RandomChunks; ++i) {
        const DetectionContents contents = contentTable(ContentCounts.at(i % ContentCounts.size()));
        const QString text = randomChunk(random);
        if (!isSame(decide(text, time, contents), decidePlainly(text, time, contents)))
            qFatal("P4: the outcomes differ for %s", qUtf8Printable(text));
    }
}

double bar(int faces)
{
    return faces < 3 ? 0.25 : 0.18;
}

} // namespace

void measureDecision(Report &report)
{
    const QDateTime time = QDateTime::currentDateTime();
    checkSameOutcome(time);
    for (const int contentCount : ContentCounts) {
        const DetectionContents contents = contentTable(contentCount);
        for (const int faces : FaceCounts) {
            const QString text = chunk(faces);
            const Step ours = [&] { decide(text, time, contents); };
            const Step plain = [&] { decidePlainly(text, time, contents); };
            const int times = repetitions(plain);
            const Comparison worst
                = compare({{repeated(ours, times)}, {}}, {{repeated(plain, times)}, {}}).front();
            report.addRatio(QStringLiteral("P4"),
                QStringLiteral("%1, %2 contents").arg(facesText(faces)).arg(contentCount),
                {worst.ours / times, worst.yardstick / times}, bar(faces));
        }
    }
}

} // namespace Bench
