# The AR0134 driver and its frame source, against a scripted ArduCam board.
qr9_library(qr9_ar0134_bench Ar0134Bench.cpp Ar0134Bench.h Ar0134Tests.cpp Ar0134Tests.h)
target_link_libraries(qr9_ar0134_bench PUBLIC qr9_camera qr9_scripted_board qr9_testsupport opencv_imgcodecs)

foreach(test IN ITEMS tst_ar0134 tst_ar0134_registers tst_ar0134_image tst_ar0134_frames)
  qr9_unit_test(${test} LIBS qr9_ar0134_bench LABELS camera)
endforeach()
foreach(test IN ITEMS tst_ar0134_framedelivery tst_ar0134_live tst_ar0134_livemode tst_ar0134_trigger)
  qr9_unit_test(${test} LIBS qr9_ar0134_bench LABELS camera tsan)
  add_dependencies(tsan_tests ${test})
endforeach()

# The test stands in the place of the library.
qr9_unit_test(tst_ar0134_calls SOURCES ArduCamCalls.cpp LIBS qr9_ar0134_bench LABELS camera)
foreach(function IN ITEMS ArduCam_autoopen ArduCam_availableImage ArduCam_close ArduCam_getSingleFrame
    ArduCam_isFrameReady ArduCam_readSensorReg ArduCam_readUserData ArduCam_setMode ArduCam_setboardConfig
    ArduCam_softTrigger ArduCam_writeSensorReg arducam_parse_config)
  target_link_options(tst_ar0134_calls PRIVATE -Wl,--wrap=${function})
endforeach()

qr9_unit_test(tst_ar0134_cameraview LIBS qr9_ar0134_bench qr9_views qr9_pylon LABELS camera)

# Has a /root of its own; where the system gives none it is skipped.
qr9_unit_test(tst_ar0134_settings LIBS qr9_ar0134_bench LABELS camera)
set_tests_properties(tst_ar0134_settings PROPERTIES SKIP_RETURN_CODE 77)
