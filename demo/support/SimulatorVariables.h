#pragma once

/// Environment variables by which the player tells the simulator what to play: the plug-in starts
/// that with fixed arguments.
namespace Demo {

constexpr const char *LiveVariable = "KRHVC_LIVE"; ///< a live file's name
constexpr const char *ReplayVariable = "KRHVC_REPLAY"; ///< a recording's file name
constexpr const char *ScenarioVariable = "KRHVC_SCENARIO"; ///< a scenario's file name

} // namespace Demo
