#include "app/zr_meta.h"

#include "zr_meta_values.h"

namespace {

constexpr char kBaseSvnRev[] = "BASE_SVN_REV=" QR9_REVISION;
constexpr char kBuildDate[] = "BUILD_DATE=" QR9_BUILD_DATE;
constexpr char kBaseVersion[] = "BASE_VERSION=" QR9_VERSION;
constexpr char kVersion[] = "VERSION=" QR9_VERSION;

/// Records of 16 bytes or more begin at a multiple of 16, shorter ones at a multiple of 8.
constexpr std::size_t alignmentOf(std::size_t size)
{
    return size >= 16 ? 16 : 8;
}

constexpr std::size_t roundedUp(std::size_t size, std::size_t alignment)
{
    return (size + alignment - 1) / alignment * alignment;
}

/// Each record is followed by NUL bytes up to the beginning of the next one.
struct Records {
    char baseSvnRev[roundedUp(sizeof kBaseSvnRev, alignmentOf(sizeof kBuildDate))];
    char buildDate[roundedUp(sizeof kBuildDate, alignmentOf(sizeof kBaseVersion))];
    char baseVersion[roundedUp(sizeof kBaseVersion, alignmentOf(sizeof kVersion))];
    char version[sizeof kVersion];
};

[[gnu::section("ZR_META"), gnu::used]] alignas(16) const Records kRecords = {
    "BASE_SVN_REV=" QR9_REVISION,
    "BUILD_DATE=" QR9_BUILD_DATE,
    "BASE_VERSION=" QR9_VERSION,
    "VERSION=" QR9_VERSION,
};

} // namespace

namespace zr_meta {

const char* const BASE_SVN_REV = kRecords.baseSvnRev;
const char* const BUILD_DATE = kRecords.buildDate;
const char* const BASE_VERSION = kRecords.baseVersion;
const char* const VERSION = kRecords.version;

} // namespace zr_meta
