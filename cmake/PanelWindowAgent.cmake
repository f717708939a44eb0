# Provides the targets QWindowKit::Core and QWindowKit::Widgets from an installed package or from
# windowkit/, as the cache variable PANEL_WINDOW_AGENT says:
#
#   auto     an installed package that serves, otherwise windowkit/
#   system   an installed package that serves, otherwise an error
#   bundled  windowkit/; no package is looked for
#
# Include it where panel_add_room() and Qt5::Widgets are known.

# Runs WindowAgentLookup/ and sets <result> to what is wrong with the package that it found, if any.
function(panel_look_for_window_agent result)
    set(directory "${CMAKE_CURRENT_BINARY_DIR}/WindowAgentLookup")
    set(flaw_file "${directory}/flaw.txt")
    # All that decides which package is found and how it is compiled with.
    set(cache "")
    foreach(variable IN ITEMS
            CMAKE_BUILD_TYPE CMAKE_CXX_COMPILER CMAKE_CXX_FLAGS CMAKE_FIND_ROOT_PATH
            CMAKE_FIND_USE_CMAKE_SYSTEM_PATH CMAKE_FIND_USE_PACKAGE_REGISTRY CMAKE_IGNORE_PATH
            CMAKE_MAKE_PROGRAM CMAKE_MODULE_PATH CMAKE_PREFIX_PATH CMAKE_SYSROOT
            CMAKE_TOOLCHAIN_FILE Qt5_DIR QWindowKit_DIR QWindowKit_ROOT)
        if(DEFINED ${variable} AND NOT "${${variable}}" MATCHES "-NOTFOUND$")
            string(APPEND cache
                "set(${variable} [==[${${variable}}]==] CACHE STRING \"\" FORCE)\n")
        endif()
    endforeach()
    file(WRITE "${directory}/cache.cmake" "${cache}")
    file(REMOVE "${flaw_file}")

    execute_process(
        COMMAND "${CMAKE_COMMAND}" -UQWindowKit_* -UCMAKE_PREFIX_PATH -C "${directory}/cache.cmake"
            "-DPANEL_WINDOW_AGENT_FLAW_FILE=${flaw_file}" -G "${CMAKE_GENERATOR}"
            -S "${CMAKE_CURRENT_LIST_DIR}/WindowAgentLookup" -B "${directory}"
        OUTPUT_FILE "${directory}/output.txt"
        ERROR_FILE "${directory}/output.txt"
        RESULT_VARIABLE status)
    if(status EQUAL 0 AND EXISTS "${flaw_file}")
        file(READ "${flaw_file}" flaw)
    else()
        set(flaw "the QWindowKit that CMake finds can't be read (see ${directory}/output.txt)")
    endif()
    set(${result} "${flaw}" PARENT_SCOPE)
endfunction()

if(NOT PANEL_WINDOW_AGENT MATCHES "^(auto|system|bundled)$")
    message(FATAL_ERROR
        "PANEL_WINDOW_AGENT is \"${PANEL_WINDOW_AGENT}\". It takes auto, system or bundled.")
endif()

if(PANEL_WINDOW_AGENT STREQUAL "bundled")
    set(PANEL_WINDOW_AGENT_FLAW "PANEL_WINDOW_AGENT is bundled")
else()
    panel_look_for_window_agent(PANEL_WINDOW_AGENT_FLAW)
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
