# The icons behind the symbols, as a resource under /clockwell/symbols. They come from the icon set that `npm ci`
# installs; nothing of it is kept in this repository.
set(icon_set "${PROJECT_SOURCE_DIR}/node_modules/@phosphor-icons/core/assets")
set(icons
    fill/airplane-fill
    fill/buildings-fill
    fill/chart-bar-fill
    fill/check-circle-fill
    fill/circle-half-fill
    fill/clock-countdown-fill
    fill/gps-fix-fill
    fill/gps-slash-fill
    fill/info-fill
    fill/key-fill
    fill/seal-check-fill
    fill/shield-check-fill
    fill/warning-fill
    fill/x-circle-fill
    regular/arrow-circle-down-right
    regular/arrow-circle-up-right
    regular/calendar-blank
    regular/calendar-dots
    regular/caret-left
    regular/caret-right
    regular/eye
    regular/eye-slash
    regular/gps-fix
    regular/hourglass
    regular/sign-out
    regular/user-circle
    regular/x)
list(TRANSFORM icons PREPEND "${icon_set}/" OUTPUT_VARIABLE icon_files)
list(TRANSFORM icon_files APPEND ".svg")

foreach(file IN LISTS icon_files)
    if(NOT EXISTS "${file}")
        message(FATAL_ERROR "The icon ${file} is missing. Run `npm ci` in ${PROJECT_SOURCE_DIR} to install the icon set.")
    endif()
endforeach()

qt_add_resources(clockwell_ui clockwell_symbols
    PREFIX /clockwell/symbols
    BASE "${icon_set}"
    OPTIONS --no-compress
    FILES ${icon_files})
