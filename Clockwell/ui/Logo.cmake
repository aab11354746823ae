# The app's logo as images, drawn from AppLogo.svg while building: the header's with its rounded corners at one, two and
# three pixels a point, as bare pixels, and the window's icon. Drawing it at run time would cost every start an SVG renderer,
# and an image file a search for image plug-ins.
add_executable(clockwell_logo tools/DrawLogo.cpp Superellipse.cpp)
target_include_directories(clockwell_logo PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
target_link_libraries(clockwell_logo PRIVATE clockwell_qt Qt6::Gui Qt6::Svg)

set(logo_svg "${CMAKE_CURRENT_SOURCE_DIR}/AppLogo.svg")
set(logo_images)
# name, side in pixels, corner radius in pixels
foreach(image "AppLogo.pixels;46;12" "AppLogo@2x.pixels;92;24" "AppLogo@3x.pixels;138;36" "AppIcon.png;256;56")
    list(GET image 0 name)
    list(GET image 1 side)
    list(GET image 2 radius)
    set(output "${CMAKE_CURRENT_BINARY_DIR}/${name}")
    add_custom_command(OUTPUT "${output}"
        COMMAND clockwell_logo "${logo_svg}" "${output}" ${side} ${radius}
        DEPENDS clockwell_logo "${logo_svg}"
        VERBATIM)
    list(APPEND logo_images "${output}")
endforeach()

qt_add_resources(clockwell_ui clockwell_logo_images
    PREFIX /clockwell
    BASE "${CMAKE_CURRENT_BINARY_DIR}"
    OPTIONS --no-compress
    FILES ${logo_images})
