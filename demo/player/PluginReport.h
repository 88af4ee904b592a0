#pragma once

#include <QString>

namespace Demo {
struct PluginFile;
} // namespace Demo

namespace Player {

/// What @p plugin is and says about itself, and why it loads or does not, as lines for a terminal.
QString pluginReport(const Demo::PluginFile &plugin);

} // namespace Player
