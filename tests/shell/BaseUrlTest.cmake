# cmake -DCASE="accepts|refuses URL" -P BaseUrlTest.cmake: tests whether configuration accepts or refuses the base URL.
string(REPLACE " " ";" words "${CASE}")
list(GET words 0 expected)
list(GET words 1 url)
if(DEFINED CHECK_ONLY)
    include("${CMAKE_CURRENT_LIST_DIR}/../../cmake/ClockwellBaseUrl.cmake")
    clockwell_check_base_url("${url}")
    return()
endif()
execute_process(
    COMMAND ${CMAKE_COMMAND} -DCHECK_ONLY=ON "-DCASE=${CASE}" -P "${CMAKE_CURRENT_LIST_FILE}"
    RESULT_VARIABLE result ERROR_VARIABLE said)
if(expected STREQUAL "accepts" AND NOT result EQUAL 0)
    message(FATAL_ERROR "${url} was refused: ${said}")
elseif(expected STREQUAL "refuses" AND (result EQUAL 0 OR NOT said MATCHES "CLOCKWELL_BASE_URL is"))
    message(FATAL_ERROR "${url} was not refused: ${said}")
endif()
