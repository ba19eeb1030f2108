# Resolves qr9_pylon by QR9_CAMERA_SDK. The libraries' names differ between releases of pylon 5, so that its own
# pylon-config is asked for them.
find_program(QR9_PYLON_CONFIG pylon-config PATHS ${QR9_PYLON_ROOT}/bin NO_DEFAULT_PATH)

if(QR9_CAMERA_SDK STREQUAL vendor AND NOT QR9_PYLON_CONFIG)
  message(FATAL_ERROR "QR9_CAMERA_SDK=vendor: no pylon 5 in ${QR9_PYLON_ROOT} (bin/pylon-config is missing). "
    "Install it, set QR9_PYLON_ROOT, or configure with QR9_CAMERA_SDK=standin.")
endif()

if(QR9_PYLON_CONFIG AND NOT QR9_CAMERA_SDK STREQUAL standin)
  foreach(what IN ITEMS cflags libs libs-rpath)
    execute_process(COMMAND ${QR9_PYLON_CONFIG} --${what} OUTPUT_VARIABLE answer
      OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(QR9_PYLON_${what} UNIX_COMMAND "${answer}")
  endforeach()
  # The vendor's headers are not ours to warn about.
  list(TRANSFORM QR9_PYLON_cflags REPLACE "^-I" "-isystem")
  add_library(qr9_pylon INTERFACE)
  target_compile_options(qr9_pylon INTERFACE ${QR9_PYLON_cflags})
  target_link_libraries(qr9_pylon INTERFACE ${QR9_PYLON_libs-rpath} ${QR9_PYLON_libs})
  message(STATUS "Basler cameras: pylon of ${QR9_PYLON_ROOT}")
else()
  add_library(qr9_pylon ALIAS qr9_pylon_standin)
  message(STATUS "Basler cameras: stand-in")
endif()
