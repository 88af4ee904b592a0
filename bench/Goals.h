#pragma once

namespace Bench {

class Report;

void measureSlot(Report &report); ///< P1, P1b: a frame through the loaded plug-in
void measurePanel(Report &report); ///< P2: a message until it is on the panel
void measureLog(Report &report); ///< P3: a record of the log
void measureDecision(Report &report); ///< P4: from the chunk to the ranked faces
void measureGrowth(Report &report); ///< P5: of the costs with what there is to do
void measurePopulation(Report &report); ///< P6: of the panel with messages
void measureHeartbeat(Report &report); ///< P7: of the GUI thread while the log is locked
void measureMemory(Report &report); ///< P8: after many frames
void measureReading(Report &report); ///< P9: of a log, for its totals

} // namespace Bench
