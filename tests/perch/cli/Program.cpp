#include "Program.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace perch::test {
namespace {

std::string textOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// What a terminal has been given and nobody has read.
std::string shownOn(int terminal) {
    fcntl(terminal, F_SETFL, O_NONBLOCK);
    std::string text;
    char part[256];
    for (ssize_t size = 0; (size = read(terminal, part, sizeof part)) > 0;)
        text.append(part, static_cast<std::size_t>(size));
    return text;
}

void sendTo(const std::filesystem::path& path, int descriptor) {
    const int file = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    if (file < 0 || dup2(file, descriptor) < 0) _exit(127);
}

void readFrom(const std::filesystem::path& path, int descriptor) {
    const int file = open(path.c_str(), O_RDONLY);
    if (file < 0 || dup2(file, descriptor) < 0) _exit(127);
}

[[noreturn]] void become(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    // As at a prompt, whatever the tests are run by: shells have background jobs ignore interrupts.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP})
        std::signal(signal, SIG_DFL);
    execv(arguments.front(), arguments.data());
    _exit(127);
}

// The signals that the process catches, bit n - 1 for signal n; none once it has ended.
std::uint64_t caughtSignals(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;) {
        if (word != "SigCgt:") continue;
        std::uint64_t signals = 0;
        status >> std::hex >> signals;
        return signals;
    }
    return 0;
}

// The first child; 0 without one.
pid_t childOf(pid_t process) {
    const std::string number = std::to_string(process);
    pid_t child = 0;
    std::ifstream("/proc/" + number + "/task/" + number + "/children") >> child;
    return child;
}

bool hasEnded(pid_t process) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid != 0;
}

}  // namespace

RunningProgram::RunningProgram(const std::vector<std::string>& command, const std::filesystem::path& folder,
                               Messages messages, const std::string& input)
    : inPath(folder.string() + ".stdin"),
      outPath(folder.string() + ".stdout"),
      errPath(folder.string() + ".stderr") {
    std::ofstream(inPath, std::ios::binary) << input;
    if (messages == Messages::Terminal &&
        openpty(&terminal, &programsTerminal, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("there is no terminal for " + command.front());
    process = fork();
    if (process < 0) throw std::runtime_error("cannot start " + command.front());
    if (process > 0) return;
    readFrom(inPath, STDIN_FILENO);
    sendTo(outPath, STDOUT_FILENO);
    if (messages == Messages::File) {
        sendTo(errPath, STDERR_FILENO);
    } else if (dup2(programsTerminal, STDERR_FILENO) < 0) {
        _exit(127);
    }
    if (chdir(folder.c_str()) != 0) _exit(127);
    become(command);
}

RunningProgram::~RunningProgram() {
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    if (terminal >= 0) close(terminal);
    if (programsTerminal >= 0) close(programsTerminal);
    std::error_code ignored;
    std::filesystem::remove(inPath, ignored);
    std::filesystem::remove(outPath, ignored);
    std::filesystem::remove(errPath, ignored);
}

bool RunningProgram::waitUntilItCatches(int signal) const {
    const std::uint64_t bit = std::uint64_t{1} << (signal - 1);
    while (!hasEnded(process)) {
        const pid_t worker = childOf(process);
        if (worker != 0 && (caughtSignals(worker) & bit) != 0) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

std::string RunningProgram::waitForLine() const {
    while (true) {
        const bool isOver = hasEnded(process);
        const std::string text = textOf(outPath);
        if (const std::size_t end = text.find('\n'); end != std::string::npos) return text.substr(0, end);
        if (isOver) return "";
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void RunningProgram::send(int signal) const {
    kill(process, signal);
}

void RunningProgram::sendUntilItEnds(int signal) const {
    for (; !hasEnded(process); std::this_thread::sleep_for(std::chrono::milliseconds(50)))
        kill(process, signal);
}

ProgramResult RunningProgram::finish() {
    int status = 0;
    waitpid(process, &status, 0);
    process = -1;
    constexpr int kSignalled = 128;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status), textOf(outPath),
            terminal >= 0 ? shownOn(terminal) : textOf(errPath)};
}

ProgramResult runProgram(const std::vector<std::string>& command, const std::filesystem::path& folder,
                         const std::string& input) {
    return RunningProgram(command, folder, Messages::File, input).finish();
}

}  // namespace perch::test
