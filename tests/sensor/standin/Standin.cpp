// A native program to be copied under any name. Prints "native" and its arguments, then waits for
// one byte or the end of standard input. "--thread NAME" lets a second thread carry a name.

#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <thread>

#include <pthread.h>
#include <unistd.h>

int main(int argc, char *argv[])
{
    std::mutex mutex;
    std::condition_variable condition;
    bool named = false;
    bool ended = false;
    std::thread thread;
    if (argc == 3 && std::strcmp(argv[1], "--thread") == 0) {
        thread = std::thread([&] {
            pthread_setname_np(pthread_self(), argv[2]);
            std::unique_lock<std::mutex> lock(mutex);
            named = true;
            condition.notify_all();
            condition.wait(lock, [&] { return ended; });
        });
        std::unique_lock<std::mutex> lock(mutex);
        condition.wait(lock, [&] { return named; });
    }

    std::fputs("native", stdout);
    for (int i = 1; i < argc; ++i)
        std::printf(" %s", argv[i]);
    std::fputs("\n", stdout);
    std::fflush(stdout);

    char byte = 0;
    const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
    if (thread.joinable()) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            ended = true;
        }
        condition.notify_all();
        thread.join();
    }
    return count < 0 ? 1 : 0;
}
