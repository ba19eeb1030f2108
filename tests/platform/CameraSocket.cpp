#include "tests/platform/CameraSocket.h"

#include "platform/camera_wire.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>

using namespace qr9;

CameraSocket::CameraSocket()
{
    char folder[] = "/tmp/scripted-device-XXXXXX";
    if (::mkdtemp(folder) == nullptr)
        throw std::runtime_error("no place for the socket of the scripted device");
    m_folder = folder;
    m_path = m_folder + "/camera.sock";
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, m_path.c_str(), sizeof(address.sun_path) - 1);
    m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0
        || ::listen(m_listener, 8) != 0)
        throw std::runtime_error("the scripted device cannot listen");
    ::setenv(wire::kSocketVariable, m_path.c_str(), 1);
}

CameraSocket::~CameraSocket()
{
    hide();
    ::close(m_listener);
    ::unlink(m_path.c_str());
    ::rmdir(m_folder.c_str());
}

void CameraSocket::hide()
{
    ::unsetenv(wire::kSocketVariable);
}
