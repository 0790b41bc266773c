# Independent implementations that judge our PDUs, natively: libgammu, and gsmlib, whose headers are older than C++17.
find_path(GAMMU_FOLDER gammu.h PATH_SUFFIXES gammu REQUIRED)
find_library(GAMMU_LIBRARY Gammu REQUIRED)
find_library(GSMME_LIBRARY gsmme REQUIRED)

folder_sources(sources oracle/phone/gsmlib)
add_library(gsmlib_oracle STATIC ${sources})
set_target_properties(gsmlib_oracle PROPERTIES CXX_STANDARD 14)
target_compile_options(gsmlib_oracle PRIVATE -Wno-deprecated)
target_include_directories(gsmlib_oracle PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(gsmlib_oracle PRIVATE ${GSMME_LIBRARY})

folder_sources(sources oracle/phone)
add_executable(oracle_phone ${sources})
target_include_directories(oracle_phone SYSTEM PRIVATE ${GAMMU_FOLDER})
target_link_libraries(oracle_phone PRIVATE test_support gtest_main gsmlib_oracle ${GAMMU_LIBRARY})
add_test(NAME ${flavour}.oracle_phone COMMAND oracle_phone)
set_tests_properties(${flavour}.oracle_phone PROPERTIES TIMEOUT 600)
