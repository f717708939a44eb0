# panel_add_room(<room> SOURCES ... [FORMS ...] [PUBLIC ...] [PRIVATE ...])
#
# Declares the static library panel_<room>. PUBLIC and PRIVATE name the libraries and rooms that it
# may use: nothing else crosses its wall. The headers of its forms (ui_X.h) are public, so that they
# can be included by whoever links the room.
function(panel_add_room room)
    cmake_parse_arguments(PARSE_ARGV 1 ROOM "" "" "SOURCES;FORMS;PUBLIC;PRIVATE")
    set(target panel_${room})

    set(form_headers)
    if(ROOM_FORMS)
        qt5_wrap_ui(form_headers ${ROOM_FORMS})
    endif()

    add_library(${target} STATIC ${ROOM_SOURCES} ${ROOM_FORMS} ${form_headers})
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_include_directories(${target}
        PUBLIC
            "${PROJECT_SOURCE_DIR}"
            "$<$<BOOL:${ROOM_FORMS}>:${CMAKE_CURRENT_BINARY_DIR}>")
    target_link_libraries(${target}
        PUBLIC ${ROOM_PUBLIC}
        PRIVATE panel_options ${ROOM_PRIVATE})
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    set_property(SOURCE ${form_headers} PROPERTY SKIP_AUTOGEN ON)
    panel_enable_lto(${target})
endfunction()
