#pragma once

#include <string>
#include <vector>

/// A small table of text lines with a bounded number of rows, and its file. Every row is one line that the
/// caller has formatted: fields are separated by "," and nothing is quoted or escaped.
///
/// A value object for one thread at a time. A line of more than 4095 bytes is cut there. A file that cannot
/// be opened is passed over without a report.
class CSVReaderWriter {
public:
    /// A table of up to 100 rows whose header is not a row of it until the table wraps.
    explicit CSVReaderWriter(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// A table of up to maxRows rows, header included; the header is row 0. With a limit below 2 the table
    /// still holds the header and the newest line.
    CSVReaderWriter(unsigned long maxRows, const char* format, ...) __attribute__((format(printf, 3, 4)));

    /// Appends a row. A full table drops its row 1 (the oldest line), and its row 0 becomes the header.
    void fillDataField(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Writes all rows, oldest line first, without a line end behind the last. No rows: an empty file.
    void write(const char* path) const;
    /// Writes row 0 with a line end, then the other rows, newest first, without a line end behind the last.
    /// No rows: an empty file.
    void reverseWrite(const char* path) const;
    /// Appends every line of the file, the first included, as a row; the limit does not apply.
    void read(const char* path);

    /// Splits a line at its commas. A comma at the end of the line adds no empty field behind it.
    void parse(std::string line, std::vector<std::string>& fields) const;
    /// Replaces the text before the first comma of the last row; a row without a comma stays as it is.
    /// Returns 0 when no row stands below row 0, otherwise 1.
    int replaceName(std::string name);
    /// Drops all rows; the header is kept for the next wrap.
    void erase();
    /// A copy of all rows.
    std::vector<std::string> csv() const;

private:
    unsigned long m_max_rows; ///< header included
    std::string m_header;
    std::vector<std::string> m_rows;
};
