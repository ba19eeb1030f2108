#include "tests/fuzz/ScratchFolder.h"

#include "tests/fuzz/require.h"

#include <filesystem>
#include <fstream>
#include <iterator>

ScratchFolder::ScratchFolder()
    : m_folder((std::filesystem::temp_directory_path() / "qr9-fuzz.XXXXXX").string())
{
    REQUIRE(mkdtemp(m_folder.data()) != nullptr);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::string ScratchFolder::put(const std::string& name, const std::uint8_t* bytes, std::size_t size)
{
    std::ofstream file(path(name), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    REQUIRE(file.flush().good());
    return path(name);
}

std::string ScratchFolder::put(
    const std::string& name, const std::uint8_t* bytes, std::size_t size, std::uintmax_t length)
{
    put(name, bytes, size);
    std::filesystem::resize_file(path(name), length);
    return path(name);
}

std::string ScratchFolder::read(const std::string& name) const
{
    std::ifstream file(path(name), std::ios::binary);
    REQUIRE(file.is_open());
    return { std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>() };
}
