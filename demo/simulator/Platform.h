#pragma once

/// What the standard library does not tell; one source file for each platform.
namespace Simulation {

/// True when somebody is, or was, at the other end of standard input: a pipe, a socket or a
/// console. False when it is closed, the null device or a file, whose end means nothing.
/// Ask before any file is opened: a closed standard input's number would be taken again.
bool standardInputIsStream();

/// Ends the process as the platform's own crashes do, without a dialog and without a dump.
[[noreturn]] void crash();

} // namespace Simulation
