#pragma once

#include <cstdint>
#include <string>

/// A new folder below the system's one for temporary files, removed at the end of the process: readers get
/// their input by a path. A process that crashes leaves it behind.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path(const std::string& name) const { return m_folder + "/" + name; }
    /// Puts a file of these bytes there, in place of an earlier one, and returns its path. A file with a
    /// `length` above `size` ends in zeros, one below it is cut.
    std::string put(const std::string& name, const std::uint8_t* bytes, std::size_t size);
    std::string put(
        const std::string& name, const std::uint8_t* bytes, std::size_t size, std::uintmax_t length);
    std::string read(const std::string& name) const;

private:
    std::string m_folder;
};
