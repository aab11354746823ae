find_package(GTest REQUIRED)
include(GoogleTest)

# Adds a test program; one for each module whose tests can share a process:
#   clockwell_test(NAME SOURCES a.cpp ... LIBRARIES target ... [NO_MAIN] [PRECOMPILE header ...]
#                  [SECRET_SERVICE | WHOLE] [TIMEOUT seconds] [FILTER pattern])
# ctest lists each test case and runs it in a separate process. With WHOLE it runs the whole program as a single test, and
# with SECRET_SERVICE, too, in a separate session bus with an unlocked Secret Service. NO_MAIN: one of the libraries has
# the main function. FILTER: which tests ctest lists, as GoogleTest's --gtest_filter takes it. PRECOMPILE: headers that most of the sources include.
function(clockwell_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "SECRET_SERVICE;NO_MAIN;WHOLE" "TIMEOUT;FILTER" "SOURCES;LIBRARIES;PRECOMPILE")
    add_executable(${name} ${test_SOURCES})
    target_link_libraries(${name} PRIVATE clockwell_warnings GTest::gmock ${test_LIBRARIES})
    if(NOT test_NO_MAIN)
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    if(test_PRECOMPILE)
        target_precompile_headers(${name} PRIVATE ${test_PRECOMPILE})
    endif()
    if(NOT test_TIMEOUT)
        set(test_TIMEOUT 120)
    endif()
    # What runs the program, to list its tests as well. As the property ENVIRONMENT of discovered tests, a list would end
    # after its first variable.
    set(launcher env QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software QT_FORCE_STDERR_LOGGING=1 LC_ALL=C.UTF-8
        "FONTCONFIG_FILE=${CMAKE_BINARY_DIR}/fonts.conf")
    if(test_SECRET_SERVICE)
        list(APPEND launcher "${PROJECT_SOURCE_DIR}/tests/support/with-secret-service")
    endif()
    if(test_SECRET_SERVICE OR test_WHOLE)
        add_test(NAME ${name} COMMAND ${launcher} $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES TIMEOUT ${test_TIMEOUT})
    else()
        set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${launcher}")
        # Tests are discovered when ctest starts, so that building does not run the program.
        gtest_discover_tests(${name} NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
            TEST_FILTER "${test_FILTER}" PROPERTIES TIMEOUT ${test_TIMEOUT})
    endif()
endfunction()
