#include "demo/simulator/FramePlan.h"

#include "demo/simulator/FrameRenderer.h"

namespace Simulation {

namespace {

QByteArray joinLines(const QVector<QByteArray> &lines)
{
    QByteArray text;
    for (const QByteArray &line : lines)
        text += line + '\n';
    return text;
}

QVector<Step> writeInPieces(const QByteArray &block, int pieces, int pauseMs)
{
    const qint64 size = block.size();
    QVector<Step> steps;
    for (int i = 0; i < pieces; ++i) {
        const int begin = static_cast<int>(size * i / pieces);
        const int end = static_cast<int>(size * (i + 1) / pieces);
        if (begin == end) // more pieces than bytes
            continue;
        if (!steps.isEmpty())
            steps.append({Step::Wait, {}, pauseMs});
        steps.append({Step::Write, block.mid(begin, end - begin), 0});
    }
    return steps;
}

} // namespace

QByteArray FramePlan::output() const
{
    QByteArray text;
    for (const Step &step : steps) {
        if (step.kind == Step::Write)
            text += step.data;
    }
    return text;
}

FramePlan planFrame(const Scenario &scenario, qint64 frame, int intervalMs)
{
    FramePlan plan;
    plan.nextAfterMs = intervalMs;
    QByteArray block = renderFrame(scenario, frame, intervalMs);
    int pieces = 1;
    int pauseMs = 0;
    for (const Fault &fault : scenario.faults) {
        if (!fault.concerns(frame))
            continue;
        switch (fault.kind) {
        case Fault::Crash:
            plan.steps.append({Step::Crash, {}, 0});
            return plan;
        case Fault::Exit:
            plan.steps.append({Step::Exit, {}, fault.status});
            return plan;
        case Fault::Silence:
            block.clear();
            break;
        case Fault::Garbage: // behind the face count, where it is in the way of the faces
            block.insert(block.indexOf('\n') + 1, joinLines(fault.lines));
            break;
        case Fault::Pieces:
            pieces = fault.pieces;
            pauseMs = fault.pauseMs;
            break;
        case Fault::Flood:
            plan.nextAfterMs = 0;
            break;
        case Fault::ErrorOutput:
            plan.steps.append({Step::WriteError, joinLines(fault.lines), 0});
            break;
        case Fault::CloseOutput:
            plan.steps.append({Step::CloseOutput, {}, 0});
            break;
        }
    }
    plan.steps += writeInPieces(block, pieces, pauseMs);
    return plan;
}

} // namespace Simulation
