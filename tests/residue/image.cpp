// image FILE PROGRAM ARGUMENT...: runs a program and writes to the file all that it could be made to dump, arguments and
// environment included, when it says so (SIGURG) and when it is about to end. Its exit code is the program's.
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>

static void add(const std::string& process, std::ofstream& out) {
    static char piece[1 << 20];
    std::ifstream maps(process + "/maps");
    const int memory = ::open((process + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    for (std::string line; std::getline(maps, line);) {
        off_t at = 0, end = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx", &at, &end) != 2 || line.find(" r") == line.npos) continue;
        for (ssize_t got = 1; at < end && got > 0; at += got) { // the system's own pages cannot be read
            const off_t most = std::min<off_t>(sizeof piece, end - at);
            got = ::pread(memory, piece, static_cast<std::size_t>(most), at);
            if (got > 0) out.write(piece, got);
        }
    }
    ::close(memory);
    out << std::ifstream(process + "/cmdline").rdbuf() << std::ifstream(process + "/environ").rdbuf();
}

int main(int, char** argv) {
    const pid_t child = ::fork();
    if (child == 0)
        return ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? ::execvp(argv[2], argv + 2) : 127;
    std::ofstream out(argv[1], std::ios::binary);
    int status = 0;
    while (::waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
        const int signal = WSTOPSIG(status);
        if (signal == SIGURG || status >> 16 == PTRACE_EVENT_EXIT) add("/proc/" + std::to_string(child), out);
        ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
        ::ptrace(PTRACE_CONT, child, nullptr, signal == SIGTRAP ? 0 : signal);
    }
    return WIFEXITED(status) && out.flush() ? WEXITSTATUS(status) : 126;
}
