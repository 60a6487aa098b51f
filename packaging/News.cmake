# Reading NEWS, for the scripts that make the package's changelog, the
# AppStream file's releases and the manual pages' dates from it. NEWS lists
# what each version brought, newest first, after some lines of preamble:
#
#   Version 1.03 (2026-11-25)
#     * One item, in the layout of a Debian changelog's items,
#       continued four spaces in.
#
# The texts stay out of CMake lists, which would split them at semicolons.

# Takes the first line off the text in the variable TEXT_VAR and puts it in
# the variable LINE_VAR.
function(pop_line text_var line_var)
    string(FIND "${${text_var}}" "\n" end)
    if(end EQUAL -1)
        set(${line_var} "${${text_var}}" PARENT_SCOPE)
        set(${text_var} "" PARENT_SCOPE)
        return()
    endif()
    string(SUBSTRING "${${text_var}}" 0 ${end} line)
    math(EXPR end "${end} + 1")
    string(SUBSTRING "${${text_var}}" ${end} -1 rest)
    set(${line_var} "${line}" PARENT_SCOPE)
    set(${text_var} "${rest}" PARENT_SCOPE)
endfunction()

# Sets NEWS_VERSIONS, newest first, and for each version V NEWS_DATE_V
# (YYYY-MM-DD) and NEWS_ITEMS_V, the lines of its items as they stand. A line
# that fits none of the forms above stops the build, and so do versions out
# of order by date.
function(read_news path)
    file(READ ${path} text)
    set(versions "")
    set(version "")
    set(number 0)
    while(NOT text STREQUAL "")
        pop_line(text line)
        math(EXPR number "${number} + 1")
        if(line MATCHES "^Version ([0-9]+(\\.[0-9]+)*) \\(([0-9][0-9][0-9][0-9]-[01][0-9]-[0-3][0-9])\\)$")
            set(date ${CMAKE_MATCH_3})
            if(NOT version STREQUAL "" AND date STRGREATER NEWS_DATE_${version})
                message(FATAL_ERROR "${path}:${number}: ${date} is after the version above: newest first")
            endif()
            set(version ${CMAKE_MATCH_1})
            if(version IN_LIST versions)
                message(FATAL_ERROR "${path}:${number}: version ${version} again")
            endif()
            list(APPEND versions ${version})
            set(NEWS_DATE_${version} ${date})
            set(NEWS_ITEMS_${version} "")
        elseif(NOT version STREQUAL "" AND (line MATCHES "^  \\* [^ ]"
                                            OR (line MATCHES "^    [^ ]" AND NOT NEWS_ITEMS_${version} STREQUAL "")))
            string(APPEND NEWS_ITEMS_${version} "${line}\n")
        elseif(NOT version STREQUAL "" AND NOT line STREQUAL "")
            message(FATAL_ERROR "${path}:${number}: neither \"Version N (YYYY-MM-DD)\", an item \"  * \" "
                                "nor its continuation four spaces in")
        endif()
    endwhile()
    foreach(version IN LISTS versions)
        if(NEWS_ITEMS_${version} STREQUAL "")
            message(FATAL_ERROR "${path}: version ${version} has no items")
        endif()
        set(NEWS_DATE_${version} ${NEWS_DATE_${version}} PARENT_SCOPE)
        set(NEWS_ITEMS_${version} "${NEWS_ITEMS_${version}}" PARENT_SCOPE)
    endforeach()
    set(NEWS_VERSIONS ${versions} PARENT_SCOPE)
endfunction()
