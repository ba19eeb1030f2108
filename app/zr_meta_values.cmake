cmake_minimum_required(VERSION 3.25)

# Writes zr_meta_values.h with what the build metadata of this build holds. Run at build time, so that a commit
# is enough to bring the values up to date; the file is touched only when they have changed.
#   cmake -DSOURCE_DIR=... -DVERSION=... -DOUTPUT=... -P zr_meta_values.cmake
set(revision "non-repo")
set(date "")
if("$ENV{SOURCE_DATE_EPOCH}" MATCHES "^[0-9]+$")
  set(date "$ENV{SOURCE_DATE_EPOCH}")
endif()
find_program(GIT git)
if(GIT)
  execute_process(COMMAND ${GIT} -C ${SOURCE_DIR} rev-parse --short=10 HEAD
    OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE failed)
  if(NOT failed)
    set(revision "${found}")
  endif()
  if(date STREQUAL "")
    execute_process(COMMAND ${GIT} -C ${SOURCE_DIR} log -1 --format=%ct
      OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  endif()
endif()
if(date STREQUAL "")
  string(TIMESTAMP date "%s" UTC)
endif()
file(CONFIGURE OUTPUT ${OUTPUT} @ONLY CONTENT "#pragma once

#define QR9_REVISION \"${revision}\"
#define QR9_BUILD_DATE \"${date}\"
#define QR9_VERSION \"${VERSION}\"
")
