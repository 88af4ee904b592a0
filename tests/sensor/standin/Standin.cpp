// Stands in for the sensor program: a native program to be copied under any name.
//
// Left alone it prints "native" and its arguments, then waits for one byte or the end of standard
// input. A text file beside it, of its name with ".do" added, tells it to do something else: one
// command a line, done in order. Then it also notes its process id, as a line of the file "pids".
// FILE is always a name in its own directory.
//
//     arguments          prints its arguments: <3><921600><500>
//     note-arguments FILE  adds a line with its arguments to FILE
//     say TEXT           prints TEXT
//     line MIB           prints so many MiB without a line end
//     copy FILE          prints what FILE holds; copy-error FILE does so on standard error
//     key                waits for one byte
//     note-key FILE      waits for one byte and writes it to FILE
//     note-input FILE    writes all input to FILE as it arrives
//     drain              reads standard input up to its end
//     wait FILE          waits until FILE exists
//     touch FILE         creates FILE
//     sleep MS           waits
//     forever            waits, although for two minutes only: nothing stays after a failed test
//     flood              prints lines, for as long as forever
//     close STREAM       closes a standard stream: 0, 1 or 2
//     ignore-signals     does not end when it is asked to
//     suspend            stops until somebody else lets it go on
//     spawn FILE         starts another program, which shares the standard streams
//     thread NAME        lets a second thread have this name and waits for a byte
//     crash KIND         memory, abort, interrupt, terminate or kill
//     exit STATUS        ends; so does the end of the file, with status 0

#include "StandinPlatform.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::minutes Forever{2};
constexpr std::chrono::milliseconds Pause{20};

class Standin
{
public:
    explicit Standin(std::vector<std::string> arguments)
        : m_arguments(std::move(arguments))
        , m_program(Platform::executable())
        , m_directory(m_program.parent_path())
    { }

    int run()
    {
        fs::path script = m_program;
        script += ".do";
        std::ifstream file(script, std::ios::binary);
        if (!file) {
            runAlone();
            return 0;
        }
        // As a whole: the file may be replaced while the program runs.
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        file.close();

        append("pids", std::to_string(Platform::processId()) + '\n');
        for (const std::string &line : lines) {
            const auto blank = line.find(' ');
            perform(line.substr(0, blank),
                blank == std::string::npos ? std::string() : line.substr(blank + 1));
        }
        return 0;
    }

private:
    void runAlone() const
    {
        std::string text = "native";
        for (const std::string &argument : m_arguments)
            text += ' ' + argument;
        say(text + '\n');
        char byte = 0;
        Platform::readByte(byte);
    }

    void perform(const std::string &command, const std::string &value) const
    {
        if (command == "arguments")
            sayArguments();
        else if (command == "note-arguments")
            noteArguments(value);
        else if (command == "say")
            say(value);
        else if (command == "line")
            line(std::stoi(value));
        else if (command == "copy")
            copy(value, 1);
        else if (command == "copy-error")
            copy(value, 2);
        else if (command == "key")
            readKey();
        else if (command == "note-key")
            append(value, readKey());
        else if (command == "note-input")
            noteInput(value);
        else if (command == "drain")
            drain();
        else if (command == "wait")
            waitFor(value);
        else if (command == "touch")
            append(value, {});
        else if (command == "sleep")
            std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(value)));
        else if (command == "forever")
            std::this_thread::sleep_for(Forever);
        else if (command == "flood")
            flood();
        else if (command == "close")
            Platform::close(std::stoi(value));
        else if (command == "ignore-signals")
            Platform::ignorePoliteSignals();
        else if (command == "suspend")
            Platform::suspend();
        else if (command == "spawn")
            Platform::spawn(m_directory / value);
        else if (command == "thread")
            Platform::waitBesideThread(value);
        else if (command == "crash")
            Platform::crash(value);
        else if (command == "exit")
            std::exit(std::stoi(value)); // NOLINT(concurrency-mt-unsafe)
        else
            say("unknown command: " + command + '\n');
    }

    static void say(const std::string &text) { Platform::write(1, text.data(), text.size()); }

    static void line(int mebibytes)
    {
        const std::string mebibyte(std::size_t{1024} * 1024, 'x');
        for (int i = 0; i < mebibytes; ++i)
            say(mebibyte);
    }

    void append(const std::string &name, const std::string &text) const
    {
        std::ofstream(m_directory / name, std::ios::binary | std::ios::app) << text;
    }

    void sayArguments() const
    {
        std::string text;
        for (const std::string &argument : m_arguments)
            text += '<' + argument + '>';
        say(text);
    }

    void noteArguments(const std::string &name) const
    {
        std::string text;
        for (const std::string &argument : m_arguments)
            text += (text.empty() ? "" : " ") + argument;
        append(name, text + '\n');
    }

    void copy(const std::string &name, int stream) const
    {
        std::ifstream file(m_directory / name, std::ios::binary);
        const std::string text{
            std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        Platform::write(stream, text.data(), text.size());
    }

    static std::string readKey()
    {
        char byte = 0;
        return Platform::readByte(byte) ? std::string(1, byte) : std::string();
    }

    void noteInput(const std::string &name) const
    {
        for (std::string key = readKey(); !key.empty(); key = readKey())
            append(name, key);
    }

    static void drain()
    {
        while (!readKey().empty()) { }
    }

    void waitFor(const std::string &name) const
    {
        const auto end = Clock::now() + Forever;
        while (!fs::exists(m_directory / name) && Clock::now() < end)
            std::this_thread::sleep_for(Pause);
    }

    static void flood()
    {
        const auto end = Clock::now() + Forever;
        while (Clock::now() < end)
            say("a line of output\n");
    }

    std::vector<std::string> m_arguments;
    fs::path m_program;
    fs::path m_directory;
};

} // namespace

int main(int argc, char *argv[])
{
    Platform::prepare();
    return Standin({argv + 1, argv + argc}).run();
}
