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
