// The texts that people write for the stage player and the simulator: a stage, a scenario, a
// recording. Whatever the bytes are, they are read or refused with a message that says where, and
// what was read and written is read as the same again.

#include "tests/fuzz/Finding.h"
#include "tests/fuzz/Target.h"

#include "demo/player/StageContent.h"
#include "demo/simulator/FramePlan.h"
#include "demo/simulator/Recording.h"
#include "demo/simulator/ScenarioReader.h"
#include "demo/stage/StageFile.h"

#include <QStringList>

#include <algorithm>
#include <limits>

using Stage::StageFile;

namespace {

constexpr int IntervalMs = 100;
constexpr int MaxFrames = 4; // of a recording or a scenario that are planned

const QString FileName = QStringLiteral("name.json");

/// "name.json:line:column: reason", within the text.
void expectPlacedMessage(const QString &error, const QByteArray &text)
{
    // No regular expression: a key in the reason may be no valid Unicode.
    const QStringList parts = error.split(QLatin1Char(':'));
    if (parts.size() < 4 || parts.at(0) != FileName || parts.mid(3).join(QString()).size() < 3)
        qFatal("message without a place: %s", qUtf8Printable(error));
    const int line = parts.at(1).toInt();
    const int column = parts.at(2).toInt();
    const QByteArray lineText = text.split('\n').value(line - 1);
    // A character has a byte or more.
    if (line < 1 || line > text.count('\n') + 1 || column < 1 || column > lineText.size() + 1)
        qFatal("place outside of the text: %s", qUtf8Printable(error));
}

/// Whatever the player asks a stage for.
void lookAt(const StageFile &stage)
{
    stage.title();
    const QList<int> ids = stage.screenIds();
    Fuzz::expect(!ids.isEmpty(), "a stage without a screen");
    Fuzz::expect(stage.hasScreen(stage.defaultScreenId()), "the default screen is none");
    Fuzz::expectSame(stage.screens().size(), ids.size(), "number of screens");
    for (const int id : ids) {
        stage.screenName(id);
        const auto contents = Player::stageContents(stage, id);
        for (const Player::StageContent &content : contents)
            Fuzz::expect(content.color.isValid(), "a card without a colour");
        stage.linkingScreens(id, 1);
    }
}

/// A screen set to what it is stays so; a content more makes a stage, too.
void change(StageFile stage)
{
    const QByteArray json = stage.toJson();
    const QList<int> ids = stage.screenIds();
    for (const int id : ids)
        stage.setScreenParameters(id, stage.screenParameters(id));
    Fuzz::expectSame(stage.toJson(), json, "stage set to what it is");

    const int id = ids.first();
    const int count = stage.contents(id).size();
    const QVariantMap entry{{QStringLiteral("params"), QVariantMap()}};
    QString error;
    if (!stage.addContent(id, count, entry, &error))
        qFatal("a content cannot be added: %s", qUtf8Printable(error));
    Fuzz::expectSame(stage.contents(id).size(), count + 1, "number of contents");
    Fuzz::expect(!stage.addContent(id, count, entry, &error), "the same content once more");
}

void checkStage(const QByteArray &text)
{
    QString error;
    const std::optional<StageFile> stage = StageFile::fromJson(text, FileName, &error);
    if (!stage) {
        expectPlacedMessage(error, text);
        return;
    }
    lookAt(*stage);
    const QByteArray json = stage->toJson();
    const QByteArray byteOrderMark = "\xef\xbb\xbf";
    if (text.mid(1).contains(byteOrderMark) || json.contains(byteOrderMark))
        return; // Qt drops one at the beginning of any text within, too
    const std::optional<StageFile> again = StageFile::fromJson(json, FileName, &error);
    if (!again)
        qFatal("what was written is refused: %s", qUtf8Printable(error));
    Fuzz::expectSame(again->toJson(), json, "stage that was written and read");
    change(*stage);
}

void checkScenario(const QByteArray &text)
{
    QString error;
    const std::optional<Simulation::Scenario> scenario
        = Simulation::parseScenario(text, FileName, &error);
    if (!scenario) {
        expectPlacedMessage(error, text);
        return;
    }
    for (int frame = 0; frame < MaxFrames; ++frame) {
        const Simulation::FramePlan plan = Simulation::planFrame(*scenario, frame, IntervalMs);
        Fuzz::expect(plan.nextAfterMs >= 0, "a frame before the one before it");
        Fuzz::expectSame(plan.output(),
            Simulation::planFrame(*scenario, frame, IntervalMs).output(), "frame planned again");
    }
    Simulation::planFrame(*scenario, std::numeric_limits<int>::max(), IntervalMs);
}

bool isSame(const Simulation::Recording &a, const Simulation::Recording &b)
{
    return a.timed == b.timed
        && std::equal(a.blocks.cbegin(), a.blocks.cend(), b.blocks.cbegin(), b.blocks.cend(),
            [](const Simulation::Recording::Block &left,
                const Simulation::Recording::Block &right) {
                return left.timeMs == right.timeMs && left.text == right.text;
            });
}

/// In the form in which it can be read again; a block's last line is ended.
QByteArray written(const Simulation::Recording &recording)
{
    QByteArray text;
    for (const Simulation::Recording::Block &block : recording.blocks)
        text += recording.timed ? Simulation::recordedBlock(block.timeMs, block.text) : block.text;
    return text;
}

Simulation::Recording readAgain(const Simulation::Recording &recording)
{
    QString error;
    const std::optional<Simulation::Recording> again
        = Simulation::parseRecording(written(recording), FileName, &error);
    if (!again)
        qFatal("what was recorded is refused: %s", qUtf8Printable(error));
    return *again;
}

void checkRecording(const QByteArray &text)
{
    QString error;
    const std::optional<Simulation::Recording> recording
        = Simulation::parseRecording(text, FileName, &error);
    if (!recording) {
        Fuzz::expect(error.startsWith(FileName + QLatin1Char(':')), "message without a file");
        return;
    }
    Simulation::Recording expected = *recording;
    for (Simulation::Recording::Block &block : expected.blocks) {
        if (recording->timed && !block.text.isEmpty() && !block.text.endsWith('\n'))
            block.text += '\n';
    }
    Fuzz::expect(isSame(readAgain(*recording), expected), "recording that was written and read");
    for (int frame = 0; frame < qMin(MaxFrames, 2 * recording->blocks.size()); ++frame) {
        const Simulation::FramePlan plan = recording->planFrame(frame, IntervalMs);
        Fuzz::expect(plan.nextAfterMs >= 0, "a block before the one before it");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    checkStage(text);
    checkScenario(text);
    checkRecording(text);
    return 0;
}
