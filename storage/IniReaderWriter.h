#pragma once

#include <string>

/// The one door to the settings files. Values are text that the caller formats and parses; each call opens
/// the file anew and nothing is kept between calls. GUI thread only; blocks for the length of the file
/// access.
///
/// Group, key and file are 8-bit text that is widened one to one. A value is UTF-8 on both sides, so that
/// what was written comes back the same; bytes that are not UTF-8 are taken as Latin-1.

/// Gives the value of the key, or defaultValue when the key is missing or empty, or the file cannot be read.
/// A value that the file has as a list of words ("a, b" without quotation marks) comes back as one text
/// joined by ", ". Returns 1 when the key was found with a non-empty value, otherwise 0. Never creates or
/// changes a file. A file that cannot be read, and one with lines that are no settings, is logged.
int ini_read(
    std::string group, std::string key, std::string defaultValue, std::string& value, std::string file);

/// Stores one key and makes it durable; the other keys stay. Blanks stand in the file as blanks: every "%20"
/// of the whole file becomes one, also in values.
///
/// The new text is made in a scratch file beside the file and takes its place in one step. So a write that
/// fails (no folder, no right, a full disk, lost power) leaves the file as it was, nothing stays pending that
/// a later read would store, and nobody sees a half-written file. The failure is logged and not reported. The
/// file's time stamp grows by at least a millisecond with each write, because the settings layer takes a file
/// of the same size and time for unchanged.
void ini_write(std::string group, std::string key, std::string value, std::string file);
