#pragma once

namespace Bench {

class Report;

void measureSlot(Report &report); ///< P1, P1b: a frame through the loaded plug-in
void measurePanel(Report &report); ///< P2: a message until it is on the panel
void measureLog(Report &report); ///< P3: a record of the log
void measureDecision(Report &report); ///< P4: from the chunk to the ranked faces

} // namespace Bench
