# The symbols, as SVG files under /clockwell/symbols: the name of each and its icon in the set that `npm ci` installs. Nothing of
# the set is kept in this repository.
set(icon_set "${PROJECT_SOURCE_DIR}/node_modules/@phosphor-icons/core/assets")
set(symbols
    airplane fill/airplane-fill
    arrow.down.right.circle regular/arrow-circle-down-right
    arrow.up.right.circle regular/arrow-circle-up-right
    building.2.fill fill/buildings-fill
    calendar regular/calendar-blank
    calendar.badge.clock regular/calendar-dots
    chart.bar.fill fill/chart-bar-fill
    checkmark.circle.fill fill/check-circle-fill
    checkmark.seal.fill fill/seal-check-fill
    checkmark.shield.fill fill/shield-check-fill
    chevron.left regular/caret-left
    chevron.right regular/caret-right
    circle.lefthalf.filled fill/circle-half-fill
    clock.badge.exclamationmark.fill fill/clock-countdown-fill
    exclamationmark.triangle.fill fill/warning-fill
    eye regular/eye
    eye.slash regular/eye-slash
    hourglass regular/hourglass
    info.circle.fill fill/info-fill
    key.fill fill/key-fill
    location.circle regular/gps-fix
    location.fill.viewfinder fill/gps-fix-fill
    location.slash.fill fill/gps-slash-fill
    person.crop.circle regular/user-circle
    rectangle.portrait.and.arrow.right regular/sign-out
    xmark regular/x
    xmark.circle.fill fill/x-circle-fill)
while(symbols)
    list(POP_FRONT symbols name icon)
    set(file "${icon_set}/${icon}.svg")
    if(NOT EXISTS "${file}")
        message(FATAL_ERROR "The icon ${file} is missing. Run `npm ci` in ${PROJECT_SOURCE_DIR} to install the icon set.")
    endif()
    set_source_files_properties("${file}" PROPERTIES QT_RESOURCE_ALIAS "symbols/${name}.svg")
    list(APPEND symbol_files "${file}")
endwhile()

qt_add_resources(clockwell_ui clockwell_pictures PREFIX /clockwell FILES ${symbol_files} AppLogo.svg Spinner.svg)
