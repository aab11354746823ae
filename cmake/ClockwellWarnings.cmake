# One interface target that every target of ours links, so that the strict flags are in one place.
add_library(clockwell_warnings INTERFACE)
target_compile_options(clockwell_warnings INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${CLOCKWELL_WERROR}>:-Werror>)
# Optimising, g++ 12 takes concatenations of std::string for copies that overlap.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(clockwell_warnings INTERFACE $<$<CONFIG:Release,RelWithDebInfo>:-Wno-restrict>)
endif()
