#pragma once

/// What KrPluginExtScreenInterface::status() answers.
namespace Kora::Status {

enum Code : int {
    Stopped = 100, ///< the plug-in's program has been let go
    Paused = 101,
    Started = 102, ///< the start was asked for; it may still fail
    Starting = 103,
    Stopping = 104,
    Initializing = 109,
    Initialized = 110,
    Constructed = 199, ///< init() has not been called yet
};

} // namespace Kora::Status
