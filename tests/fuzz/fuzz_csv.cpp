// A table file from a stick, and what can be done with a table that holds it. The input is the file; its
// first byte also says how many rows the table may have.
#include "storage/CSVReaderWriter.h"
#include "tests/fuzz/ScratchFolder.h"
#include "tests/fuzz/require.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongestLine = 4095;
/// Rows that are filled in anew: more than any limit below.
constexpr std::size_t kFilled = 12;

std::string joined(const std::vector<std::string>& parts, char between)
{
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += i == 0 ? "" : std::string(1, between);
        text += parts[i];
    }
    return text;
}

void checkFields(const CSVReaderWriter& table, const std::string& row)
{
    std::vector<std::string> fields { "left from before" };
    table.parse(row, fields);
    // A comma at the end opens no further field.
    const bool endsInComma = !row.empty() && row.back() == ',';
    REQUIRE(joined(fields, ',') + (endsInComma ? "," : "") == row);
}

void checkFile(const ScratchFolder& scratch, const CSVReaderWriter& table)
{
    const std::string path = scratch.path("written.csv");
    table.write(path.c_str());
    REQUIRE(scratch.read("written.csv") == joined(table.csv(), '\n'));
    table.reverseWrite(path.c_str());
    REQUIRE(
        table.csv().size() == 1 || scratch.read("written.csv").size() == joined(table.csv(), '\n').size());
}

void checkRename(CSVReaderWriter table)
{
    const std::vector<std::string> before = table.csv();
    const int renamed = table.replaceName("name");
    REQUIRE(renamed == (before.size() > 1 ? 1 : 0));
    const std::size_t comma = before.empty() ? std::string::npos : before.back().find(',');
    if (renamed == 1 && comma != std::string::npos)
        REQUIRE(table.csv().back() == "name" + before.back().substr(comma));
    else
        REQUIRE(table.csv() == before);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static ScratchFolder scratch;
    const std::string path = scratch.put("table.csv", bytes, size);
    const std::string text(reinterpret_cast<const char*>(bytes), size);

    const unsigned long maxRows = 1 + (size > 0 ? bytes[0] % 8UL : 0);
    CSVReaderWriter table(maxRows, "%s", "header");
    table.erase();
    table.read(path.c_str());
    const std::vector<std::string> rows = table.csv();
    const bool endsInLine = !text.empty() && text.back() == '\n';
    REQUIRE(joined(rows, '\n') + (endsInLine ? "\n" : "") == text);
    for (const std::string& row : rows)
        checkFields(table, row);
    checkFile(scratch, table);
    checkRename(table);

    // The limit does not hold for what is read; each line from then on lets one row fall out.
    std::vector<std::string> held = rows;
    for (std::size_t i = 0; i < std::min(rows.size(), kFilled); ++i) {
        const std::string& row = rows[i];
        const std::size_t before = held.size();
        table.fillDataField("%s", row.c_str());
        held = table.csv();
        REQUIRE(held.size() <= before + 1);
        REQUIRE(before + 1 <= maxRows || held.size() <= std::max<std::size_t>(before, 2));
        REQUIRE(held.back() == row.substr(0, std::min(row.find('\0'), kLongestLine)));
    }
    return 0;
}
