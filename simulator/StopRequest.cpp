#include "simulator/StopRequest.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace qr9::sim {

StopRequest::StopRequest()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGHUP);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    m_signals = ::signalfd(-1, &ending, SFD_CLOEXEC);
}

StopRequest::~StopRequest()
{
    m_pSignalled.reset();
    ::close(m_signals);
}

void StopRequest::watch(bool untilEndOfInput)
{
    m_pSignalled = std::make_unique<QSocketNotifier>(m_signals, QSocketNotifier::Read);
    connect(m_pSignalled.get(), &QSocketNotifier::activated, QCoreApplication::instance(),
        &QCoreApplication::quit);
    if (untilEndOfInput) {
        m_pInput = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
        connect(m_pInput.get(), &QSocketNotifier::activated, this, &StopRequest::readInput);
    }
}

void StopRequest::readInput()
{
    std::array<char, 4096> ignored;
    const ssize_t count = ::read(STDIN_FILENO, ignored.data(), ignored.size());
    if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
        m_pInput->setEnabled(false);
        QCoreApplication::quit();
    }
}

} // namespace qr9::sim
