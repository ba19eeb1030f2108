#include "tests/platform/ScriptedBoard.h"

#include <unistd.h>

#include <algorithm>
#include <stdexcept>

using namespace qr9;

bool ScriptedBoard::Request::operator==(const Request& other) const
{
    return kind == other.kind && code == other.code && value == other.value && name == other.name
        && payload == other.payload;
}

ScriptedBoard::ScriptedBoard()
{
    if (::pipe(m_stopPipe) != 0) {
        throw std::runtime_error("no pipe for the scripted board");
    }
    m_thread = std::thread(&ScriptedBoard::serve, this);
}

ScriptedBoard::~ScriptedBoard()
{
    m_socket.hide();
    ::close(m_stopPipe[1]);
    m_thread.join();
    for (const int client : m_clients) {
        ::close(client);
    }
    ::close(m_stopPipe[0]);
}

void ScriptedBoard::setBoards(int count)
{
    const std::lock_guard lock(m_mutex);
    m_boards = count;
}

void ScriptedBoard::setUsbType(int usbType)
{
    const std::lock_guard lock(m_mutex);
    m_usbType = usbType;
}

void ScriptedBoard::refuseOpens(int count, std::uint32_t code)
{
    const std::lock_guard lock(m_mutex);
    m_refusals = count;
    m_refusalCode = code;
}

void ScriptedBoard::setModeCode(std::uint32_t code)
{
    const std::lock_guard lock(m_mutex);
    m_modeCode = code;
}

void ScriptedBoard::setPicture(std::function<Bytes(int)> picture)
{
    const std::lock_guard lock(m_mutex);
    m_picture = std::move(picture);
}

void ScriptedBoard::script(std::vector<Shot> shots)
{
    const std::lock_guard lock(m_mutex);
    m_shots.assign(shots.begin(), shots.end());
}

void ScriptedBoard::setDelay(std::chrono::milliseconds delay)
{
    const std::lock_guard lock(m_mutex);
    m_delay = delay;
}

void ScriptedBoard::failReads(std::uint32_t address, std::uint32_t code)
{
    const std::lock_guard lock(m_mutex);
    m_failingReads[address] = code;
}

void ScriptedBoard::failWrites(std::uint32_t address, std::uint32_t code)
{
    const std::lock_guard lock(m_mutex);
    m_failingWrites[address] = code;
}

void ScriptedBoard::setRegister(std::uint32_t address, std::uint16_t value)
{
    const std::lock_guard lock(m_mutex);
    m_registers[address] = value;
}

void ScriptedBoard::failAll(wire::Error error)
{
    const std::lock_guard lock(m_mutex);
    m_failure = error;
}

std::uint16_t ScriptedBoard::reg(std::uint32_t address) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_registers.find(address);
    return found == m_registers.end() ? std::uint16_t(0) : found->second;
}

std::vector<ScriptedBoard::Request> ScriptedBoard::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

int ScriptedBoard::count(wire::Kind kind) const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count_if(m_requests.begin(), m_requests.end(),
        [kind](const Request& request) { return request.kind == kind; }));
}

void ScriptedBoard::forgetRequests()
{
    const std::lock_guard lock(m_mutex);
    m_requests.clear();
}

ScriptedBoard::Request ScriptedBoard::write(std::uint32_t address, std::uint16_t value)
{
    return { wire::Kind::WriteRegister, static_cast<std::int32_t>(address), value, {}, {} };
}

ScriptedBoard::Request ScriptedBoard::read(std::uint32_t address)
{
    return { wire::Kind::ReadRegister, static_cast<std::int32_t>(address), 0, {}, {} };
}
