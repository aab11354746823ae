# An interface target with the warning flags; all targets of the project link it.
add_library(clockwell_warnings INTERFACE)
target_compile_options(clockwell_warnings INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${CLOCKWELL_WERROR}>:-Werror>)
# With optimisation, g++ 12 falsely reports concatenations of std::string as overlapping copies.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(clockwell_warnings INTERFACE $<$<CONFIG:Release,RelWithDebInfo>:-Wno-restrict>)
endif()
