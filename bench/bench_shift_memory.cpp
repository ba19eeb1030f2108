// How far the resident memory of a process rises above its level before, during one adaptive shift search.

#include "bench/shift_rounds.h"
#include "bench/table.h"

#include <QtGlobal>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

/// A figure of this process's /proc status, in KiB.
long status(const std::string& key)
{
    std::ifstream file("/proc/self/status");
    for (std::string word; file >> word;) {
        if (word == key + ":") {
            long value = 0;
            file >> value;
            return value;
        }
    }
    std::fprintf(stderr, "/proc/self/status holds no %s\n", key.c_str());
    std::exit(1);
}

void forgetPeak()
{
    malloc_trim(0);
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush;
    if (!file) {
        std::fputs("the peak of the resident memory cannot be reset\n", stderr);
        std::exit(1);
    }
}

/// MiB by which `search` raises the resident memory of a process that has done nothing of the kind before.
double peakOf(void (*search)(ShiftField&))
{
    int ends[2];
    if (pipe(ends) != 0) {
        std::perror("pipe");
        std::exit(1);
    }
    const pid_t child = fork();
    if (child < 0) {
        std::perror("fork");
        std::exit(1);
    }
    if (child == 0) {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        ShiftField field;
        forgetPeak();
        const long before = status("VmRSS");
        search(field);
        const long rise = status("VmHWM") - before;
        const bool told = write(ends[1], &rise, sizeof rise) == static_cast<ssize_t>(sizeof rise);
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    long rise = 0;
    const bool told = read(ends[0], &rise, sizeof rise) == static_cast<ssize_t>(sizeof rise);
    close(ends[0]);
    int how = 0;
    if (waitpid(child, &how, 0) != child || how != 0 || !told) {
        std::fputs("a search ended early\n", stderr);
        std::exit(1);
    }
    return static_cast<double>(rise) / 1024.0;
}

} // namespace

int main()
{
    const double literal = peakOf(searchLiterally);
    const double built = peakOf(searchBuilt);
    return printTable({ { "memory of a shift search, two channels", literal, built, 1.0 } }, "MiB") ? 0 : 1;
}
