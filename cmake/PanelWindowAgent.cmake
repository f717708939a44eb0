# Provides the targets QWindowKit::Core and QWindowKit::Widgets, as PANEL_WINDOW_AGENT says:
#
#   bundled  from windowkit/; no package is looked for
#   system   from an installed package
#
# Include it where panel_add_module() and Qt5::Widgets are known.

# Sets <result> to whether the package found declares what the panel calls. Only compiles.
function(panel_check_window_agent result)
    set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
    set(CMAKE_REQUIRED_LIBRARIES QWindowKit::Widgets QWindowKit::Core Qt5::Widgets)
    set(CMAKE_REQUIRED_QUIET ON)
    # Asked anew each time: the package may have been replaced since.
    unset(PANEL_WINDOW_AGENT_SERVES CACHE)
    include(CheckCXXSourceCompiles)
    check_cxx_source_compiles("
        #include <QWKCore/windowagentbase.h>
        #include <QWKWidgets/widgetwindowagent.h>
        bool (QWK::WindowAgentBase::*question)(const QPoint &)
            = &QWK::WindowAgentBase::inTitleBarDraggableArea;
        void setup(QWK::WidgetWindowAgent *agent, QWidget *window) { agent->setup(window); }
        " PANEL_WINDOW_AGENT_SERVES)
    set(${result} "${PANEL_WINDOW_AGENT_SERVES}" PARENT_SCOPE)
endfunction()

if(PANEL_WINDOW_AGENT STREQUAL "bundled")
    add_subdirectory("${CMAKE_CURRENT_LIST_DIR}/../windowkit"
        "${CMAKE_CURRENT_BINARY_DIR}/windowkit")
elseif(PANEL_WINDOW_AGENT STREQUAL "system")
    find_package(QWindowKit QUIET COMPONENTS Core Widgets)
    if(NOT TARGET QWindowKit::Core OR NOT TARGET QWindowKit::Widgets)
        message(FATAL_ERROR
            "PANEL_WINDOW_AGENT is \"system\", but CMake finds no installed QWindowKit with the "
            "components Core and Widgets. Name its place in CMAKE_PREFIX_PATH, or configure with "
            "-DPANEL_WINDOW_AGENT=bundled.")
    endif()
    panel_check_window_agent(serves)
    if(NOT serves)
        message(FATAL_ERROR
            "PANEL_WINDOW_AGENT is \"system\", but the QWindowKit in ${QWindowKit_DIR} doesn't "
            "declare the signal bool inTitleBarDraggableArea(const QPoint &) on "
            "QWK::WindowAgentBase, or has no QWK::WidgetWindowAgent. Install one that does, or "
            "configure with -DPANEL_WINDOW_AGENT=bundled.")
    endif()
    message(STATUS "Window agent: the installed QWindowKit in ${QWindowKit_DIR}")
else()
    message(FATAL_ERROR
        "PANEL_WINDOW_AGENT is \"${PANEL_WINDOW_AGENT}\". It takes bundled or system.")
endif()
