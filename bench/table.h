#pragma once

#include <string>
#include <vector>

/// Figures of a literal and a built version of one operation.
struct TableRow {
    std::string operation;
    double literal = 0.0;
    double built = 0.0;
    double wantedRatio = 0.0; ///< literal / built is to be at least this
};

/// Prints the rows with their ratios and verdicts on the standard output, in Markdown. `unit` is that of the
/// literal and built figures. Returns whether every row is good; a table without rows is not.
bool printTable(const std::vector<TableRow>& rows, const std::string& unit);
