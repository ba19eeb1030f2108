/* Stands for the instrument's main application beside which the tool is installed: a program file with build
 * records of its own, of another version than the tool's, for `readelf -p ZR_META TAVO_QR9.app`. One object,
 * so that the records keep their order. */

struct build_records {
    char base_svn_rev[32];
    char build_date[32];
    char base_version[24];
    char version[14];
};

__attribute__((section("ZR_META"), used, aligned(16))) static const struct build_records records = {
    "BASE_SVN_REV=4711",
    "BUILD_DATE=1750411409",
    "BASE_VERSION=3.1.7",
    "VERSION=3.1.7",
};

int main(void)
{
    return 0;
}
