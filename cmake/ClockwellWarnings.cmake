# One interface target that every target of ours links, so that the strict flags are in one place.
add_library(clockwell_warnings INTERFACE)
target_compile_options(clockwell_warnings INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${CLOCKWELL_WERROR}>:-Werror>)
