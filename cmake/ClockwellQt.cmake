# Qt and the coroutine library, found once, with the definitions that every target of the app shares.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core DBus Gui Network Positioning Qml Quick Svg)
find_package(QCoro6 0.8 REQUIRED COMPONENTS Core Network)
# At the top, because the finalisation of executables asks for every target that their libraries link.
find_package(ICU 72 REQUIRED COMPONENTS i18n uc)
qcoro_enable_coroutines()

# Where QML modules are laid out: the import path of the app's resources, of qmllint and of the tests.
set(QT_QML_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/qml")

add_library(clockwell_qt INTERFACE)
target_compile_definitions(clockwell_qt INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_NO_URL_CAST_FROM_STRING QT_STRICT_ITERATORS)
target_include_directories(clockwell_qt INTERFACE "${PROJECT_SOURCE_DIR}/Clockwell")
target_link_libraries(clockwell_qt INTERFACE clockwell_warnings Qt6::Core)

# A room of the app with QML in it: a static library and its QML module.
#   clockwell_qml_room(TARGET URI QML_FILES ... SOURCES ... LIBRARIES ... IMPORTS ...)
function(clockwell_qml_room target uri)
    cmake_parse_arguments(PARSE_ARGV 2 room "" "" "QML_FILES;SOURCES;LIBRARIES;IMPORTS;SINGLETONS")
    foreach(file IN LISTS room_QML_FILES)
        get_filename_component(alias "${file}" NAME)
        set_source_files_properties("${file}" PROPERTIES QT_RESOURCE_ALIAS "${alias}")
    endforeach()
    foreach(file IN LISTS room_SINGLETONS)
        set_source_files_properties("${file}" PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
    endforeach()
    string(REPLACE "." "/" directory "${uri}")
    qt_add_qml_module(${target}
        URI ${uri}
        VERSION 1.0
        STATIC
        RESOURCE_PREFIX /qt/qml
        OUTPUT_DIRECTORY "${QT_QML_OUTPUT_DIRECTORY}/${directory}"
        QML_FILES ${room_QML_FILES}
        SOURCES ${room_SOURCES}
        IMPORTS ${room_IMPORTS}
        DEPENDENCIES QtQuick)
    target_link_libraries(${target} PUBLIC clockwell_qt Qt6::Quick ${room_LIBRARIES})
    target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    # Generated registration and cache sources are Qt's, not ours: their warnings are not ours to fix.
    target_compile_options(${target}plugin PRIVATE -Wno-conversion)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "/\\.rcc/qmlcache/")
    set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS "-Wno-conversion;-Wno-shadow")
endfunction()

# The start of a program of the app looks thousands of symbols up, library by library in the order of linking: with the
# libraries that define most of them first, that takes a third less.
function(clockwell_link_qt_first target)
    target_link_options(${target} PRIVATE "LINKER:--push-state,--no-as-needed"
        $<TARGET_FILE:Qt6::Core> $<TARGET_FILE:Qt6::Quick> $<TARGET_FILE:Qt6::Qml> $<TARGET_FILE:Qt6::Gui>
        "LINKER:--pop-state")
endfunction()
