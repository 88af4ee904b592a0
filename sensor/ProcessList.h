#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The system's processes, as far as the controller needs them. Free of Qt, one source file for
/// each platform.
namespace PluginKrHvcP2::ProcessList {

using ProcessId = std::uint32_t;

/// The ids of all running processes but this one whose program has the bare @p fileName (ASCII), in
/// any letter case and whoever started them. Empty when the system's list cannot be read.
std::vector<ProcessId> find(const std::string &fileName);

/// Ends the process @p id at once, provided that it is still one of @p fileName: ids are reused.
/// Never ends this process. False when nothing was ended.
///
/// When the name cannot be read any more, nothing is ended on Linux; on Windows the process is, as
/// its list of processes may fail for a while.
bool end(ProcessId id, const std::string &fileName);

} // namespace PluginKrHvcP2::ProcessList
