#include "demo/simulator/ScenarioFormat.h"

namespace Simulation {

QStringList faultNames()
{
    static const QStringList names{QStringLiteral("crash"), QStringLiteral("exit"),
        QStringLiteral("silence"), QStringLiteral("garbage"), QStringLiteral("pieces"),
        QStringLiteral("flood"), QStringLiteral("errorOutput"), QStringLiteral("closeOutput")};
    return names;
}

QVector<QByteArray> defaultLines(Fault::Kind kind)
{
    switch (kind) {
    case Fault::Garbage:
        // Things that a damaged transmission leaves behind, bytes that are no UTF-8 and a NUL
        // among them.
        return {"Index:", "Index:x\tX:1 Y:2", "Age\tAge:4O Confidence:", "Gender\tGender:male",
            "Face Direction\tUD:7", "\t \t", QByteArray("\xff\xfe\x00\xc3(", 5),
            "Failed to execute."};
    case Fault::ErrorOutput:
        return {"HvcCon: the sensor does not answer"};
    default:
        return {};
    }
}

} // namespace Simulation
