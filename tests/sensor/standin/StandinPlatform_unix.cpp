#include "StandinPlatform.h"

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

#include <cerrno>
#include <csignal>
#include <pthread.h>
#include <spawn.h>
#include <sys/resource.h>
#include <unistd.h>

namespace Platform {

void prepare()
{
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
}

std::filesystem::path executable()
{
    return std::filesystem::read_symlink("/proc/self/exe");
}

unsigned long processId()
{
    return static_cast<unsigned long>(::getpid());
}

bool readByte(char &byte)
{
    return ::read(STDIN_FILENO, &byte, 1) == 1;
}

void write(int stream, const char *bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t count = ::write(stream, bytes, size);
        if (count <= 0)
            return;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
}

void close(int stream)
{
    ::close(stream);
}

void ignorePoliteSignals()
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        std::signal(signal, SIG_IGN);
}

void suspend()
{
    ::raise(SIGSTOP);
}

void crash(const std::string &kind)
{
    const int signal = kind == "memory" ? SIGSEGV
        : kind == "abort"               ? SIGABRT
        : kind == "interrupt"           ? SIGINT
        : kind == "terminate"           ? SIGTERM
                                        : SIGKILL;
    std::signal(signal, SIG_DFL); // a sanitizer would make a plain exit of it
    ::raise(signal);
    std::abort();
}

void spawn(const std::filesystem::path &program)
{
    std::string path = program.string();
    char *arguments[] = {path.data(), nullptr};
    pid_t id = 0;
    ::posix_spawn(&id, path.c_str(), nullptr, nullptr, arguments, environ);
}

void waitBesideThread(const std::string &name)
{
    std::mutex mutex;
    std::condition_variable condition;
    bool named = false;
    bool ended = false;
    std::thread thread([&] {
        pthread_setname_np(pthread_self(), name.c_str());
        std::unique_lock<std::mutex> lock(mutex);
        named = true;
        condition.notify_all();
        condition.wait(lock, [&] { return ended; });
    });
    {
        std::unique_lock<std::mutex> lock(mutex);
        condition.wait(lock, [&] { return named; });
    }
    Platform::write(STDOUT_FILENO, "named", 5);
    char byte = 0;
    readByte(byte);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ended = true;
    }
    condition.notify_all();
    thread.join();
}

} // namespace Platform
