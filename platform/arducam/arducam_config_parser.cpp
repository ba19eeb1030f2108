#include "arducam_config_parser.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kMaxParams = 16;
/// command, value, index and count stand before the data bytes of a board command.
constexpr std::size_t kBoardHead = 4;

struct SectionRow {
    const char* header;
    uint32_t section;
};
constexpr std::array<SectionRow, 4> kSections { {
    { "[camera parameter]", CAMERA_SECTION },
    { "[board parameter]", BOARD_SECTION },
    { "[register parameter]", REGISTER_SECTION },
    { "[control parameter]", CONTROL_SECTION },
} };

struct UsbRow {
    const char* header;
    uint32_t usb;
};
constexpr std::array<UsbRow, 4> kUsbKinds { {
    { "", USB_KIND_ALL },
    { "[dev2]", USB_KIND_DEV2 },
    { "[dev3][inf3]", USB_KIND_DEV3_INF3 },
    { "[dev3][inf2]", USB_KIND_DEV3_INF2 },
} };

std::string trimmed(const std::string& text)
{
    const auto isSpace = [](unsigned char c) { return std::isspace(c) != 0; };
    const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isSpace).base();
    return { first, last };
}

std::string withoutComment(const std::string& line)
{
    return trimmed(line.substr(0, std::min(line.find(';'), line.find("//"))));
}

/// A whole number, hexadecimal with 0x or decimal, of at most `largest`.
std::optional<uint32_t> number(
    const std::string& text, uint32_t largest = std::numeric_limits<uint32_t>::max())
{
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const std::string digits = hex ? text.substr(2) : text;
    const char* allowed = hex ? "0123456789abcdefABCDEF" : "0123456789";
    if (digits.empty() || digits.size() > 10 || digits.find_first_not_of(allowed) != std::string::npos) {
        return std::nullopt;
    }
    const unsigned long long value = std::strtoull(digits.c_str(), nullptr, hex ? 16 : 10);
    if (value > largest) {
        return std::nullopt;
    }
    return static_cast<uint32_t>(value);
}

/// The numbers of a comma-separated list; nothing when one of them is none.
std::optional<std::vector<uint32_t>> numbers(const std::string& text)
{
    std::vector<uint32_t> list;
    std::size_t from = 0;
    while (true) {
        const std::size_t comma = text.find(',', from);
        const auto value = number(trimmed(text.substr(from, comma - from)));
        if (!value) {
            return std::nullopt;
        }
        list.push_back(*value);
        if (comma == std::string::npos) {
            return list;
        }
        from = comma + 1;
    }
}

template <typename Field> bool setNumber(const std::string& text, Field& field)
{
    const auto value = number(text, std::numeric_limits<Field>::max());
    field = static_cast<Field>(value.value_or(0));
    return value.has_value();
}

/// One reading of one file.
class Reading {
public:
    /// False when the line cannot be understood.
    bool take(const std::string& rawLine)
    {
        const std::string line = withoutComment(rawLine);
        if (line.empty()) {
            return true;
        }
        if (line.front() == '[') {
            return header(line);
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos) {
            return false;
        }
        const std::string key = trimmed(line.substr(0, equals));
        const std::string value = trimmed(line.substr(equals + 1));
        switch (m_section) {
        case CAMERA_SECTION:
            return cameraLine(key, value);
        case BOARD_SECTION:
        case REGISTER_SECTION:
            return listLine(key, value);
        case CONTROL_SECTION:
            return !key.empty() && !value.empty();
        default:
            return false;
        }
    }

    CameraParam camera {};
    std::vector<Config> configs;

private:
    bool header(const std::string& line)
    {
        std::string rest = line;
        uint32_t section = m_section;
        for (const SectionRow& row : kSections) {
            if (line.rfind(row.header, 0) == 0) {
                section = row.section;
                rest = trimmed(line.substr(std::strlen(row.header)));
            }
        }
        const auto usb = std::find_if(
            kUsbKinds.begin(), kUsbKinds.end(), [&rest](const UsbRow& row) { return rest == row.header; });
        const bool hasKinds = section == BOARD_SECTION || section == REGISTER_SECTION;
        if (usb == kUsbKinds.end() || (usb->usb != USB_KIND_ALL && !hasKinds)) {
            return false;
        }
        m_section = section;
        m_usb = usb->usb;
        return true;
    }

    bool cameraLine(const std::string& key, const std::string& value)
    {
        if (key == "CFG_MODE") {
            return setNumber(value, camera.cfg_mode);
        }
        if (key == "TYPE") {
            std::strncpy(camera.type, value.c_str(), sizeof(camera.type) - 1);
            return !value.empty() && value.size() < sizeof(camera.type);
        }
        if (key == "SIZE") {
            const auto list = numbers(value);
            if (!list || list->size() != 2) {
                return false;
            }
            camera.width = (*list)[0];
            camera.height = (*list)[1];
            return true;
        }
        if (key == "BIT_WIDTH") {
            return setNumber(value, camera.bit_width);
        }
        if (key == "FORMAT") {
            const auto list = numbers(value);
            if (!list || list->size() > 2 || *std::max_element(list->begin(), list->end()) > 0xFF) {
                return false;
            }
            const uint32_t sub = list->size() == 2 ? (*list)[1] : 0;
            camera.format = static_cast<uint16_t>((*list)[0] << 8 | sub);
            return true;
        }
        if (key == "I2C_MODE") {
            return setNumber(value, camera.i2c_mode);
        }
        if (key == "I2C_ADDR") {
            return setNumber(value, camera.i2c_addr);
        }
        return key == "TRANS_LVL" && setNumber(value, camera.trans_lvl);
    }

    bool listLine(const std::string& key, const std::string& value)
    {
        const auto list = numbers(value);
        if (!list || list->size() > kMaxParams) {
            return false;
        }
        if (key == "REG" && m_section == REGISTER_SECTION) {
            return list->size() == 2 && (*list)[0] <= 0xFFFF && append(REGISTER_WRITE, *list);
        }
        if (key == "VRCMD" && m_section == BOARD_SECTION) {
            return goodBoardCommand(*list) && append(BOARD_COMMAND, *list);
        }
        return key == "DELAY" && list->size() == 1 && append(DELAY_ENTRY, *list);
    }

    static bool goodBoardCommand(const std::vector<uint32_t>& list)
    {
        return list.size() >= kBoardHead && list[0] <= 0xFF && list[1] <= 0xFFFF && list[2] <= 0xFFFF
            && list[3] == list.size() - kBoardHead
            && std::all_of(list.begin() + kBoardHead, list.end(), [](uint32_t byte) { return byte <= 0xFF; });
    }

    bool append(uint32_t kind, const std::vector<uint32_t>& list)
    {
        Config entry {};
        entry.type = m_section << 24 | m_usb << 16 | kind;
        std::copy(list.begin(), list.end(), entry.params);
        entry.params_length = static_cast<uint8_t>(list.size());
        configs.push_back(entry);
        return true;
    }

    uint32_t m_section = 0; ///< none before the first header
    uint32_t m_usb = USB_KIND_ALL;
};

/// The list of the last file read on this thread.
thread_local std::vector<Config> lastConfigs;

int parse(const char* fileName, CameraConfigs& result)
{
    std::ifstream file(fileName);
    if (!file) {
        return -1;
    }
    Reading reading;
    std::string line;
    for (int lineNumber = 1; std::getline(file, line); ++lineNumber) {
        if (!reading.take(line)) {
            return lineNumber;
        }
    }
    if (file.bad()) {
        return -1;
    }
    lastConfigs = std::move(reading.configs);
    result.camera_param = reading.camera;
    result.configs = lastConfigs.data();
    result.configs_length = static_cast<uint32_t>(lastConfigs.size());
    return 0;
}

} // namespace

int arducam_parse_config(const char* file_name, CameraConfigs* configs)
{
    *configs = {};
    try {
        return parse(file_name, *configs);
    } catch (const std::bad_alloc&) {
        return -2;
    }
}
