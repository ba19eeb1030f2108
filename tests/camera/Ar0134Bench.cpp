#include "tests/camera/Ar0134Bench.h"

#include "camera/ar0134.h"

#include <QDir>
#include <QFile>

#include <cstdio>

#include <unistd.h>

Ar0134Bench::Ar0134Bench()
    : m_before(QDir::currentPath())
{
    QDir::setCurrent(m_folder.path());
    setPicture(1280, 964, 8, "4, 0");
}

Ar0134Bench::~Ar0134Bench()
{
    QDir::setCurrent(m_before);
}

const char* Ar0134Bench::file() const
{
    return config_file_name;
}

void Ar0134Bench::setConfiguration(const QByteArray& sections)
{
    write(sections);
}

void Ar0134Bench::setPicture(int width, int height, int bits, const QByteArray& format)
{
    m_camera = "[camera parameter]\nSIZE = " + QByteArray::number(width) + ", " + QByteArray::number(height)
        + "\nBIT_WIDTH = " + QByteArray::number(bits) + "\nFORMAT = " + format
        + "\nI2C_MODE = 3\nI2C_ADDR = 0x20\n";
    write({});
}

void Ar0134Bench::removeFile()
{
    QFile::remove(config_file_name);
}

void Ar0134Bench::write(const QByteArray& sections)
{
    QFile file(config_file_name);
    if (!file.open(QFile::WriteOnly | QFile::Truncate)) {
        qFatal("no configuration file for the test");
    }
    file.write(m_camera + sections);
}

StandardOutput::StandardOutput()
{
    if (!m_file.open()) {
        qFatal("no file for the standard output");
    }
    std::fflush(stdout);
    m_before = ::dup(STDOUT_FILENO);
    ::dup2(m_file.handle(), STDOUT_FILENO);
}

StandardOutput::~StandardOutput()
{
    std::fflush(stdout);
    ::dup2(m_before, STDOUT_FILENO);
    ::close(m_before);
}

QByteArray StandardOutput::text()
{
    std::fflush(stdout);
    QFile file(m_file.fileName());
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}
