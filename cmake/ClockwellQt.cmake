# Qt and the coroutine library, found once, with the definitions that every target of the app shares.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core DBus Gui Network Positioning Qml Quick Svg)
find_package(QCoro6 0.8 REQUIRED COMPONENTS Core)
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

# A module of the app with QML in it: a static library and its QML module.
#   clockwell_qml_module(TARGET URI QML_FILES ... SOURCES ... LIBRARIES ... IMPORTS ...)
function(clockwell_qml_module target uri)
    cmake_parse_arguments(PARSE_ARGV 2 module "" "" "QML_FILES;SOURCES;LIBRARIES;IMPORTS")
    foreach(file IN LISTS module_QML_FILES)
        get_filename_component(alias "${file}" NAME)
        set_source_files_properties("${file}" PROPERTIES QT_RESOURCE_ALIAS "${alias}")
    endforeach()
    string(REPLACE "." "/" directory "${uri}")
    # Set before the module is made, which needs it, and only here: the libraries that Qt adds for resources have no macros.
    qt_add_library(${target} STATIC)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    qt_add_qml_module(${target}
        URI ${uri}
        VERSION 1.0
        RESOURCE_PREFIX /qt/qml
        OUTPUT_DIRECTORY "${QT_QML_OUTPUT_DIRECTORY}/${directory}"
        QML_FILES ${module_QML_FILES}
        SOURCES ${module_SOURCES}
        IMPORTS ${module_IMPORTS}
        DEPENDENCIES QtQuick)
    set_target_properties(${target}plugin PROPERTIES AUTOMOC ON)
    target_link_libraries(${target} PUBLIC clockwell_qt Qt6::Quick ${module_LIBRARIES})
    target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    clockwell_merge_compiled_qml(${target})
    # Generated registration sources are Qt's, not ours: their warnings are not ours to fix.
    target_compile_options(${target}plugin PRIVATE -Wno-conversion)
endfunction()

# Compiles the C++ that Qt generates from a module's QML files in one translation unit, without the warnings that are not
# ours to fix: every one of the files reads the same headers for seconds and then compiles in no time.
function(clockwell_merge_compiled_qml target)
    get_target_property(generated ${target} SOURCES)
    list(FILTER generated INCLUDE REGEX "/\\.rcc/qmlcache/")
    set_source_files_properties(${generated} PROPERTIES HEADER_FILE_ONLY ON)
    list(TRANSFORM generated REPLACE "(.+)" "#include \"\\1\"" OUTPUT_VARIABLE includes)
    list(JOIN includes "\n" includes)
    set(merged "${CMAKE_CURRENT_BINARY_DIR}/${target}_compiled_qml.cpp")
    file(CONFIGURE OUTPUT "${merged}" CONTENT "@includes@\n" @ONLY)
    set_source_files_properties("${merged}" PROPERTIES
        COMPILE_OPTIONS "-Wno-conversion;-Wno-shadow" SKIP_AUTOMOC ON SKIP_UNITY_BUILD_INCLUSION ON)
    target_sources(${target} PRIVATE "${merged}")
endfunction()

# The start of a program of the app looks thousands of symbols up, library by library in the order of linking: with the
# libraries that define most of them first, that takes a third less.
function(clockwell_link_qt_first target)
    target_link_options(${target} PRIVATE "LINKER:--push-state,--no-as-needed"
        $<TARGET_FILE:Qt6::Core> $<TARGET_FILE:Qt6::Quick> $<TARGET_FILE:Qt6::Qml> $<TARGET_FILE:Qt6::Gui>
        "LINKER:--pop-state")
endfunction()
