#include "bench/table.h"

#include <cstdio>

bool printTable(const std::vector<TableRow>& rows, const std::string& unit)
{
    std::printf("| %-48s | literal, %s | built, %s | ratio | wanted | verdict     |\n", "operation",
        unit.c_str(), unit.c_str());
    std::printf(
        "|%s|-------------|-----------|-------|--------|-------------|\n", std::string(50, '-').c_str());
    bool allGood = !rows.empty();
    for (const TableRow& row : rows) {
        const double ratio = row.built > 0.0 ? row.literal / row.built : 0.0;
        const bool good = ratio >= row.wantedRatio;
        allGood = allGood && good;
        std::printf("| %-48s | %11.3f | %9.3f | %5.1f | %6.1f | %-11s |\n", row.operation.c_str(),
            row.literal, row.built, ratio, row.wantedRatio, good ? "good" : "FALLS SHORT");
    }
    return allGood;
}
