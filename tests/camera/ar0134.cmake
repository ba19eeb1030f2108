# The AR0134 driver and its frame source, against a scripted ArduCam board.
qr9_library(qr9_ar0134_bench Ar0134Bench.cpp Ar0134Bench.h)
target_link_libraries(qr9_ar0134_bench PUBLIC qr9_camera qr9_scripted_board qr9_testsupport opencv_imgcodecs)

foreach(test IN ITEMS tst_ar0134 tst_ar0134_registers tst_ar0134_image tst_ar0134_frames tst_ar0134_trigger)
  qr9_unit_test(${test} LIBS qr9_ar0134_bench LABELS camera)
endforeach()
foreach(test IN ITEMS tst_ar0134_framedelivery tst_ar0134_livemode tst_ar0134_live)
  qr9_unit_test(${test} LIBS qr9_ar0134_bench LABELS camera tsan)
  add_dependencies(tsan_tests ${test})
endforeach()

qr9_unit_test(tst_ar0134_cameraview LIBS qr9_ar0134_bench qr9_views qr9_pylon LABELS camera)

# Has a /root of its own; where the system gives none it is skipped.
qr9_unit_test(tst_ar0134_settings LIBS qr9_ar0134_bench LABELS camera)
set_tests_properties(tst_ar0134_settings PROPERTIES SKIP_RETURN_CODE 77)
