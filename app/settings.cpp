#include "app/settings.h"

#include "app/int_range.h"
#include "storage/IniReaderWriter.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

int toInt(const std::string& text)
{
    return withinInt(std::strtol(text.c_str(), nullptr, 10));
}

} // namespace

namespace settings {

std::string read(const char* group, const char* key, const char* defaultValue)
{
    std::string value;
    ini_read(group, key, defaultValue, value, "/root/TAVO_QR9/TAVO_QR9.ini");
    return value;
}

int readInt(const char* group, const char* key, const char* defaultValue)
{
    return toInt(read(group, key, defaultValue));
}

double readReal(const char* group, const char* key, const char* defaultValue)
{
    return std::strtod(read(group, key, defaultValue).c_str(), nullptr);
}

int readToolInt(const char* group, const char* key, const char* defaultValue)
{
    std::string value;
    ini_read(group, key, defaultValue, value, "/root/TAVO_QR9/VerifierQR9.ini");
    return toInt(value);
}

void write(const char* group, const char* key, const std::string& text)
{
    ini_write(group, key, text, "/root/TAVO_QR9/TAVO_QR9.ini");
}

void writeInt(const char* group, const char* key, int value)
{
    write(group, key, std::to_string(value));
}

void writeReal(const char* group, const char* key, const char* format, double value)
{
    write(group, key, formatReal(format, value).toStdString());
}

QString formatReal(const char* format, double value)
{
    // Room for the longest double in fixed notation.
    char text[400];
    std::snprintf(text, sizeof text, format, value);
    return QString::fromLatin1(text);
}

int truncated(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (value <= static_cast<double>(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}

} // namespace settings
