#pragma once

#include <string>

/// A listening camera socket in a folder of its own, at which the libraries of this process look for their
/// devices until it is hidden. Constructing it throws where it cannot be had.
class CameraSocket {
public:
    CameraSocket();
    ~CameraSocket();
    CameraSocket(const CameraSocket&) = delete;
    CameraSocket& operator=(const CameraSocket&) = delete;

    /// The listening descriptor.
    int listener() const { return m_listener; }

    /// The libraries look for it no longer; those that are connected stay so.
    void hide();

private:
    std::string m_folder;
    std::string m_path;
    int m_listener = -1;
};
