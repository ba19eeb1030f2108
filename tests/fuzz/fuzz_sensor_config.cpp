// The text file that describes a sensor. The input is the file.
#include "tests/fuzz/ScratchFolder.h"
#include "tests/fuzz/require.h"

#include <arducam_config_parser.h>

#include <algorithm>
#include <cstring>

namespace {

void checkEntry(const Config& entry)
{
    const std::uint32_t section = entry.type >> 24;
    const std::uint32_t kind = entry.type & 0xFFFF;
    REQUIRE(section == BOARD_SECTION || section == REGISTER_SECTION);
    REQUIRE(kind == DELAY_ENTRY || kind == (section == BOARD_SECTION ? BOARD_COMMAND : REGISTER_WRITE));
    REQUIRE((entry.type >> 16 & 0xFF) <= USB_KIND_DEV3_INF2);
    REQUIRE(entry.params_length >= 1 && entry.params_length <= std::size(entry.params));
    REQUIRE(kind != BOARD_COMMAND || entry.params[3] + 4 == entry.params_length);
    REQUIRE(kind != REGISTER_WRITE || (entry.params_length == 2 && entry.params[0] <= 0xFFFF));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static ScratchFolder scratch;
    const std::string path = scratch.put("sensor.cfg", bytes, size);

    CameraConfigs configs;
    std::memset(&configs, 0xA5, sizeof(configs));
    const int result = arducam_parse_config(path.c_str(), &configs);
    const auto lines = std::count(bytes, bytes + size, '\n') + 1;
    REQUIRE(result >= 0 && result <= lines);
    REQUIRE(result == 0 || (configs.configs == nullptr && configs.configs_length == 0));
    REQUIRE(configs.configs_length <= static_cast<std::size_t>(lines));
    REQUIRE(configs.controls_length == 0);
    REQUIRE(std::memchr(configs.camera_param.type, 0, sizeof(configs.camera_param.type)) != nullptr);
    std::for_each(configs.configs, configs.configs + configs.configs_length, checkEntry);
    return 0;
}
