#pragma once

#include <QString>

#include <string>

/// The window's short way to the settings files, and to the C library's number formats that they hold.
/// GUI thread only. Nothing is cached: every call opens the file anew, so that an edited file takes effect
/// without a restart.
namespace settings {

/// Text of a key of the instrument's file, or `defaultValue` when it is absent or empty.
std::string read(const char* group, const char* key, const char* defaultValue);

/// The same, as an integer in base 10 (`strtol`); a text that is no number gives 0.
int readInt(const char* group, const char* key, const char* defaultValue);

/// The same, as a real number (`strtod`); a text that is no number gives 0.0.
double readReal(const char* group, const char* key, const char* defaultValue);

/// The same as `readInt`, of the tool's own file, which holds the filter corrections.
int readToolInt(const char* group, const char* key, const char* defaultValue);

/// Stores one key of the instrument's file and makes it durable at once.
void write(const char* group, const char* key, const std::string& text);

/// Stores an integer in the form "%d".
void writeInt(const char* group, const char* key, int value);

/// Stores a real number in a C format such as "%.2f".
void writeReal(const char* group, const char* key, const char* format, double value);

/// A real number in a C format, rounded as the C library rounds (ties to even of the binary value).
QString formatReal(const char* format, double value);

/// A real number cut towards zero, kept within the range of an integer; not-a-number gives 0.
int truncated(double value);

} // namespace settings
