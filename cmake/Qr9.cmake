# What every target of the house has in common: warnings, sanitizers, the include root, and how tests register.

find_program(QR9_CCACHE ccache)
if(QR9_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QR9_CCACHE})
endif()

set(QR9_PRODUCT_ROOMS app link camera views algorithms storage)

# qr9_own_code(TARGET) - our own code: includes are written from the root, and no warning is let pass.
function(qr9_own_code target)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON)
  target_compile_definitions(${target} PRIVATE QT_DEPRECATED_WARNINGS)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${QR9_WERROR}>:-Werror>)
  # Results must not depend on the instruction set that a machine happens to have.
  target_compile_options(${target} PRIVATE -ffp-contract=off)
  if(QR9_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${QR9_SANITIZE} -fno-omit-frame-pointer)
    if(NOT QR9_SANITIZE STREQUAL "thread")
      target_compile_options(${target} PRIVATE -fno-sanitize-recover=all)
    endif()
    target_link_options(${target} PUBLIC -fsanitize=${QR9_SANITIZE})
  endif()
  file(RELATIVE_PATH room ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  if(room IN_LIST QR9_PRODUCT_ROOMS)
    qr9_counted(${target})
  endif()
endfunction()

# qr9_counted(TARGET) - where the build counts lines, those of this target are counted. They are compiled just as they
# stand; what is around the product keeps its speed.
function(qr9_counted target)
  if(QR9_COVERAGE)
    target_compile_options(${target} PRIVATE -O0 --coverage -fprofile-update=atomic)
    target_link_options(${target} PUBLIC --coverage)
  endif()
endfunction()

# qr9_library(NAME SOURCES... ) - the static library of one room.
function(qr9_library target)
  add_library(${target} STATIC ${ARGN})
  qr9_own_code(${target})
endfunction()

# qr9_lengthen(LIMIT) - multiplies the variable LIMIT, a test's seconds, by what a sanitizer or the counting of lines
# slows the test down.
macro(qr9_lengthen limit)
  if(QR9_SANITIZE OR QR9_COVERAGE)
    math(EXPR ${limit} "4 * ${${limit}}")
  endif()
endmacro()

# qr9_unit_test(NAME LABELS... LIBS...) - a Qt Test program tests/<room>/NAME.cpp that needs no room.
# It runs on the offscreen platform, so that no display is needed.
function(qr9_unit_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${name}.cpp ${ARG_SOURCES})
  qr9_own_code(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} Qt5::Test)
  if(QR9_SANITIZE MATCHES thread)
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/sanitizers/QtLocks.cpp)
    target_link_libraries(${name} PRIVATE ${CMAKE_DL_LIBS})
    set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set(limit 120)
  qr9_lengthen(limit)
  set_tests_properties(${name} PROPERTIES LABELS "unit;${ARG_LABELS}" TIMEOUT ${limit}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=;LC_ALL=C.UTF-8;${QR9_SANITIZER_ENVIRONMENT}")
endfunction()

# qr9_room_program(NAME [SOURCES...] [LIBS...]) - a Qt Test program NAME.cpp that needs a room to run in.
function(qr9_room_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${name}.cpp ${ARG_SOURCES})
  qr9_own_code(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} Qt5::Test)
  add_dependencies(${name} VirtualInstrument TAVO_QR9.app)
endfunction()

# qr9_room_run(NAME PROGRAM [LABELS...] [ROOM arguments of "room run"...] [ARGS arguments of the program...]
# [TIMEOUT seconds]) - registers a run of such a program in a private room of its own against a virtual instrument,
# with a screen: see simulator/room. In the room the build folder is /run/prog, the source tree /run/source
# (read-only) and the rig folder with the sockets and transcripts /run/rig. Skipped where no room can be had.
function(qr9_room_run name program)
  cmake_parse_arguments(ARG "" "TIMEOUT" "LABELS;ROOM;ARGS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  qr9_lengthen(ARG_TIMEOUT)
  file(RELATIVE_PATH path ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_BINARY_DIR}/${program})
  # The launcher ends a program that hangs before ctest does, so that the evidence is kept.
  math(EXPR limit "${ARG_TIMEOUT} + 30")
  add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/simulator/room/room run --build ${PROJECT_BINARY_DIR}
    --timeout ${ARG_TIMEOUT} ${ARG_ROOM} -- ${path} ${ARG_ARGS})
  set_tests_properties(${name} PROPERTIES LABELS "workflow;${ARG_LABELS}" TIMEOUT ${limit} SKIP_RETURN_CODE 77
    COST ${ARG_TIMEOUT} # the longest begin first
    ENVIRONMENT "LC_ALL=C.UTF-8;${QR9_SANITIZER_ENVIRONMENT}")
  if(QR9_SANITIZE)
    # Slowed down, two rooms at a time leave the camera no time to follow the stage.
    set_tests_properties(${name} PROPERTIES RUN_SERIAL ON)
  endif()
endfunction()

# qr9_room_test(NAME [SOURCES...] [LIBS...] [LABELS...] [ROOM...] [TIMEOUT seconds]) - such a program and one run.
function(qr9_room_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS;ROOM" ${ARGN})
  qr9_room_program(${name} SOURCES ${ARG_SOURCES} LIBS ${ARG_LIBS})
  qr9_room_run(${name} ${name} LABELS ${ARG_LABELS} ROOM ${ARG_ROOM} TIMEOUT ${ARG_TIMEOUT})
endfunction()

# What the sanitizers are told at run time; a finding fails the test. The system's libraries keep some
# allocations until the process ends, which is not a finding of ours: see tests/sanitizers/.
if(QR9_SANITIZE MATCHES address)
  set(QR9_SANITIZER_ENVIRONMENT
    "ASAN_OPTIONS=detect_leaks=1:abort_on_error=0:detect_odr_violation=0;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/sanitizers/leaks.txt:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1")
elseif(QR9_SANITIZE MATCHES thread)
  set(QR9_SANITIZER_ENVIRONMENT
    "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/sanitizers/threads.txt:halt_on_error=0:exitcode=66")
endif()
