# Fails the configure step unless the cache variable <variable> holds a bare host name: dot-separated
# labels of letters, digits and inner hyphens.
function(panel_check_host variable)
    set(host "${${variable}}")
    set(label "[A-Za-z0-9]([A-Za-z0-9-]*[A-Za-z0-9])?")
    string(LENGTH "${host}" length)
    if(NOT host MATCHES "^${label}(\\.${label})*$" OR length GREATER 253)
        message(FATAL_ERROR
            "${variable} is \"${host}\", which is no host name. Give the host alone, for example "
            "-D${variable}=www.maker.example: no scheme, slash, port or blank.")
    endif()
endfunction()
