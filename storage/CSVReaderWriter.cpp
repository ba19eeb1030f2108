#include "storage/CSVReaderWriter.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <fstream>

namespace {

constexpr unsigned long kDefaultMaxRows = 100;
constexpr std::size_t kLineBufferSize = 4096;

std::string formatted(const char* format, std::va_list arguments)
{
    std::array<char, kLineBufferSize> line {};
    std::vsnprintf(line.data(), line.size(), format, arguments);
    return line.data();
}

} // namespace

CSVReaderWriter::CSVReaderWriter(const char* format, ...)
    : m_max_rows(kDefaultMaxRows)
{
    std::va_list arguments;
    va_start(arguments, format);
    m_header = formatted(format, arguments);
    va_end(arguments);
}

CSVReaderWriter::CSVReaderWriter(unsigned long maxRows, const char* format, ...)
    : m_max_rows(maxRows)
{
    std::va_list arguments;
    va_start(arguments, format);
    m_header = formatted(format, arguments);
    va_end(arguments);
    m_rows.push_back(m_header);
}

void CSVReaderWriter::fillDataField(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::string line = formatted(format, arguments);
    va_end(arguments);

    if (m_rows.size() + 1 <= m_max_rows) {
        m_rows.push_back(std::move(line));
        return;
    }
    std::vector<std::string> rows { m_header };
    if (m_rows.size() > 2) {
        rows.insert(rows.end(), m_rows.begin() + 2, m_rows.end());
    }
    rows.push_back(std::move(line));
    m_rows = std::move(rows);
}

void CSVReaderWriter::write(const char* path) const
{
    std::ofstream file(path, std::ios::out | std::ios::trunc);
    if (!file.is_open() || m_rows.empty()) {
        return;
    }
    for (std::size_t row = 0; row + 1 < m_rows.size(); ++row) {
        file << m_rows[row] << std::endl;
    }
    file << m_rows.back();
}

void CSVReaderWriter::reverseWrite(const char* path) const
{
    std::ofstream file(path, std::ios::out | std::ios::trunc);
    if (!file.is_open() || m_rows.empty()) {
        return;
    }
    file << m_rows.front() << std::endl;
    for (std::size_t row = m_rows.size() - 1; row >= 2; --row) {
        file << m_rows[row] << std::endl;
    }
    if (m_rows.size() > 1) {
        file << m_rows[1];
    }
}

void CSVReaderWriter::read(const char* path)
{
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        m_rows.push_back(line);
    }
}

void CSVReaderWriter::parse(std::string line, std::vector<std::string>& fields) const
{
    fields.clear();
    std::size_t begin = 0;
    while (begin < line.size()) {
        const std::size_t end = std::min(line.find(',', begin), line.size());
        fields.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
}

int CSVReaderWriter::replaceName(std::string name)
{
    if (m_rows.size() <= 1) {
        return 0;
    }
    std::string& row = m_rows.back();
    const std::size_t comma = row.find(',');
    if (comma != std::string::npos) {
        row.replace(0, comma, name);
    }
    return 1;
}

void CSVReaderWriter::erase()
{
    m_rows.clear();
}

std::vector<std::string> CSVReaderWriter::csv() const
{
    return m_rows;
}
