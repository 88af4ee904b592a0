#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

/// What the stand-in needs of the system, one source file for each platform.
namespace Platform {

/// Bytes go through unchanged; no dialog or core file follows a crash.
void prepare();

std::filesystem::path executable(); ///< absolute
unsigned long processId();

// Of the standard streams: 0, 1 and 2. Nothing is buffered.
bool readByte(char &byte); ///< false at the end of standard input
void write(int stream, const char *bytes, std::size_t size);
void close(int stream);

void ignorePoliteSignals(); ///< where there are any
void suspend(); ///< until somebody else lets the program go on

/// @p kind: "memory" (of somebody else), "abort", "interrupt" (Ctrl+C); where there are signals
/// also "terminate" and "kill".
[[noreturn]] void crash(const std::string &kind);

/// Starts @p program, which shares the standard streams.
void spawn(const std::filesystem::path &program);

/// Lets a second thread carry @p name while this one waits for a byte; where threads have names.
void waitBesideThread(const std::string &name);

} // namespace Platform
