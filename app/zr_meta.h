#pragma once

#include <cstddef>

/// Build metadata of this program. The records lie one behind the other in the ELF section ZR_META, where
/// `readelf -p ZR_META` finds them in the file on a unit; each is "key=value", NUL-terminated.
namespace zr_meta {

extern const char* const BASE_SVN_REV; ///< "BASE_SVN_REV=" and the revision, or "non-repo"
extern const char* const BUILD_DATE; ///< "BUILD_DATE=" and seconds since 1970, UTC
extern const char* const BASE_VERSION; ///< "BASE_VERSION=" and the version of the base tree
extern const char* const VERSION; ///< "VERSION=" and the version of this program

} // namespace zr_meta
