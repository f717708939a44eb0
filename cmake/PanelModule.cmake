# panel_add_module(<module> SOURCES ... [FORMS ...] [PUBLIC ...] [PRIVATE ...])
#
# Declares the static library panel_<module>. PUBLIC and PRIVATE name the libraries and modules that it
# links. The headers of its forms (ui_X.h) are public, so that whoever links the module can include
# them.
function(panel_add_module module)
    cmake_parse_arguments(PARSE_ARGV 1 MODULE "" "" "SOURCES;FORMS;PUBLIC;PRIVATE")
    set(target panel_${module})

    set(form_headers)
    if(MODULE_FORMS)
        qt5_wrap_ui(form_headers ${MODULE_FORMS})
    endif()

    add_library(${target} STATIC ${MODULE_SOURCES} ${MODULE_FORMS} ${form_headers})
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_include_directories(${target}
        PUBLIC
            "${PROJECT_SOURCE_DIR}"
            "$<$<BOOL:${MODULE_FORMS}>:${CMAKE_CURRENT_BINARY_DIR}>")
    target_link_libraries(${target}
        PUBLIC ${MODULE_PUBLIC}
        PRIVATE panel_options ${MODULE_PRIVATE})
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    set_property(SOURCE ${form_headers} PROPERTY SKIP_AUTOGEN ON)
    panel_enable_lto(${target})
endfunction()
