find_package(GTest REQUIRED)
include(GoogleTest)

# One line a test:
#   clockwell_test(NAME SOURCES a.cpp ... LIBRARIES target ... [SECRET_SERVICE] [TIMEOUT seconds])
# SECRET_SERVICE runs it on a session bus of its own with an unlocked secret service behind it.
function(clockwell_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "SECRET_SERVICE;NO_MAIN" "TIMEOUT" "SOURCES;LIBRARIES")
    add_executable(${name} ${test_SOURCES})
    # Fixtures in anonymous namespaces do not stand side by side in one translation unit.
    set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
    target_link_libraries(${name} PRIVATE clockwell_warnings GTest::gmock ${test_LIBRARIES})
    if(NOT test_NO_MAIN)
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    if(NOT test_TIMEOUT)
        set(test_TIMEOUT 120)
    endif()
    set(command ${name})
    if(test_SECRET_SERVICE)
        set(command "${PROJECT_SOURCE_DIR}/tests/support/with-secret-service" $<TARGET_FILE:${name}>)
    endif()
    add_test(NAME ${name} COMMAND ${command})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${test_TIMEOUT} ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen;QT_QUICK_BACKEND=software;QT_FORCE_STDERR_LOGGING=1;LC_ALL=C.UTF-8")
endfunction()
