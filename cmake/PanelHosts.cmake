# Fails the configure step unless the cache variable <variable> holds a bare host name: dot-separated
# labels of letters, digits and inner hyphens, of 63 characters at most each and 253 in all.
function(panel_check_host variable)
    set(host "${${variable}}")
    set(label "[A-Za-z0-9]([A-Za-z0-9-]*[A-Za-z0-9])?")
    string(LENGTH "${host}" length)
    string(REPLACE "." ";" labels "${host}")
    set(longest 0)
    foreach(text IN LISTS labels)
        string(LENGTH "${text}" label_length)
        if(label_length GREATER longest)
            set(longest ${label_length})
        endif()
    endforeach()
    if(NOT host MATCHES "^${label}(\\.${label})*$" OR longest GREATER 63 OR length GREATER 253)
        message(FATAL_ERROR
            "${variable} is \"${host}\", which is no host name. Give the host alone, for example "
            "-D${variable}=www.maker.example: no scheme, slash, port or blank.")
    endif()
endfunction()

# panel_add_web_host(<variable> DEFAULT <host> HELP <text>)
#
# Declares the cache variable <variable> for the host of a web page and checks it. Whoever links
# panel_web_hosts has its value as the definition <variable>; the global property PANEL_WEB_HOSTS lists
# the variables.
function(panel_add_web_host variable)
    cmake_parse_arguments(PARSE_ARGV 1 HOST "" "DEFAULT;HELP" "")
    set(${variable} "${HOST_DEFAULT}" CACHE STRING "${HOST_HELP}")
    panel_check_host(${variable})
    if(NOT TARGET panel_web_hosts)
        add_library(panel_web_hosts INTERFACE)
    endif()
    target_compile_definitions(panel_web_hosts INTERFACE "${variable}=\"${${variable}}\"")
    set_property(GLOBAL APPEND PROPERTY PANEL_WEB_HOSTS ${variable})
endfunction()
