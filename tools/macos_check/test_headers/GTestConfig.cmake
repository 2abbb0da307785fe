# GoogleTest for the cross-build: its headers only. The tests are compiled for macOS, never linked.
#
#   MAC_API           folder of the generated headers; macos_test_api.h in it declares what only tests call
#   MAC_TEST_HEADERS  folder that holds the headers of GoogleTest and of the JSON library, and no others:
#                     next to them Debian has its own C library's

foreach(_name IN ITEMS gtest gtest_main gmock gmock_main)
  add_library(GTest::${_name} INTERFACE IMPORTED)
  target_include_directories(GTest::${_name} SYSTEM INTERFACE "${MAC_TEST_HEADERS}")
  target_compile_options(
    GTest::${_name} INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:SHELL:-include \"${MAC_API}/macos_test_api.h\">")
endforeach()
