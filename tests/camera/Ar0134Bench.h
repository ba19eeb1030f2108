#pragma once

#include <QByteArray>
#include <QTemporaryDir>
#include <QTemporaryFile>

/// What a test of the AR0134 driver stands on: a folder of its own as working directory, with the sensor
/// configuration under the name that the instrument uses.
class Ar0134Bench {
public:
    /// With a configuration of 1280 by 964 pixels, one byte each, and an empty register list.
    Ar0134Bench();
    Ar0134Bench(const Ar0134Bench&) = delete;
    Ar0134Bench& operator=(const Ar0134Bench&) = delete;
    ~Ar0134Bench();

    const char* file() const;

    /// Sections behind the six lines of the camera's own.
    void setConfiguration(const QByteArray& sections);

    /// Another picture, and no sections behind it.
    void setPicture(int width, int height, int bits, const QByteArray& format);

    void removeFile();

private:
    void write(const QByteArray& sections);

    QByteArray m_camera;
    QTemporaryDir m_folder;
    QString m_before;
};

/// Collects what the process prints on its standard output while it lives.
class StandardOutput {
public:
    StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;
    ~StandardOutput();

    QByteArray text();

private:
    QTemporaryFile m_file;
    int m_before = -1;
};
