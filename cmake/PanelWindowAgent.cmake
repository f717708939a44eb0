# Provides the targets QWindowKit::Core and QWindowKit::Widgets from an installed package or from
# windowkit/, as the cache variable PANEL_WINDOW_AGENT says:
#
#   auto     an installed package that serves, otherwise windowkit/
#   system   an installed package that serves, otherwise an error
#   bundled  windowkit/; no package is looked for
#
# Include it where panel_add_room() and Qt5::Widgets are known.

if(NOT PANEL_WINDOW_AGENT MATCHES "^(auto|system|bundled)$")
    message(FATAL_ERROR
        "PANEL_WINDOW_AGENT is \"${PANEL_WINDOW_AGENT}\". It takes auto, system or bundled.")
endif()

if(PANEL_WINDOW_AGENT STREQUAL "bundled")
    set(PANEL_WINDOW_AGENT_FLAW "PANEL_WINDOW_AGENT is bundled")
else()
    add_subdirectory("${CMAKE_CURRENT_LIST_DIR}/WindowAgentLookup"
        "${CMAKE_CURRENT_BINARY_DIR}/WindowAgentLookup")
endif()

if(NOT PANEL_WINDOW_AGENT_FLAW)
    find_package(QWindowKit QUIET REQUIRED COMPONENTS Core Widgets)
    message(STATUS "Window agent: the installed QWindowKit in ${QWindowKit_DIR}")
elseif(PANEL_WINDOW_AGENT STREQUAL "system")
    message(FATAL_ERROR
        "PANEL_WINDOW_AGENT is \"system\", but ${PANEL_WINDOW_AGENT_FLAW}. Install one that does and "
        "name its place in CMAKE_PREFIX_PATH, or configure with -DPANEL_WINDOW_AGENT=bundled.")
else()
    message(STATUS "Window agent: building windowkit/, since ${PANEL_WINDOW_AGENT_FLAW}")
    add_subdirectory("${CMAKE_CURRENT_LIST_DIR}/../windowkit"
        "${CMAKE_CURRENT_BINARY_DIR}/windowkit")
endif()
