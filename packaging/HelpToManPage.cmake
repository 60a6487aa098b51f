# Makes a program's manual page from its own --help, so that the page can
# never say something the program does not:
#
#   cmake -DPROGRAM=path -DNAME=wrpd6t-tool -DNEWS=NEWS -DVERSION=1.03 -DSEE_ALSO="a;b"
#         -DGZIP=gzip -DOUTPUT=man/wrpd6t-tool.1 -P HelpToManPage.cmake
#
# writes OUTPUT and OUTPUT.gz. The help is read in the layout QCommandLineParser
# writes it, which the tool's overview keeps as well:
#
#   Usage: NAME SYNOPSIS
#   Description, a paragraph a line; its first line is the page's summary.
#
#   Heading:
#     term          text of the term
#                   and its continuation
#   A paragraph of the heading's section.
#
# Each heading becomes a section of the page (Options: OPTIONS). Each entry
# of a "Commands:" section is a command of the program: the page gives the
# help of "NAME COMMAND --help" there, so a new command is in the next page
# built. The page is dated with the release of VERSION in NEWS.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/News.cmake)

# The help of the program with some arguments. Paths the program names under
# the user's home are given the way the user knows them, not as the home of
# whoever builds the page.
function(help_text out)
    set(ENV{XDG_DATA_HOME} "~/.local/share")
    set(ENV{XDG_CONFIG_HOME} "~/.config")
    set(ENV{QT_QPA_PLATFORM} offscreen)
    # In a sanitizer build, what a program leaves for the system to free on
    # its way out after --help is no fault of the page.
    set(ENV{ASAN_OPTIONS} detect_leaks=0)
    execute_process(COMMAND "${PROGRAM}" ${ARGN} --help RESULT_VARIABLE status
                    OUTPUT_VARIABLE text ERROR_VARIABLE errors)
    if(NOT status EQUAL 0 OR NOT text MATCHES "^Usage: ")
        message(FATAL_ERROR "${NAME} ${ARGN} --help ended with ${status}:\n${text}${errors}")
    endif()
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

# A line of text as roff: backslashes kept, options spelt with minus signs
# (so that what a reader copies from the page works), nothing taken for a
# request.
function(roff out text)
    string(REPLACE "\\" "\\e" text "${text}")
    string(REGEX REPLACE "(^|[ ([\"'=,|/])--([A-Za-z])" "\\1\\\\-\\\\-\\2" text "${text}")
    string(REGEX REPLACE "(^|[ ([\"'=,|/])-([A-Za-z0-9])" "\\1\\\\-\\2" text "${text}")
    string(REPLACE " - " " \\- " text "${text}")
    if(text MATCHES "^[.']")
        string(PREPEND text "\\&")
    endif()
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

# The term of an entry: option names bold and their values italic, arguments
# italic, anything else bold.
function(roff_term out term section)
    roff(term "${term}")
    if(section STREQUAL "ARGUMENTS")
        set(term "\\fI${term}\\fR")
    elseif(term MATCHES "^\\\\-")
        string(REGEX REPLACE "(\\\\-[^ ,]*)" "\\\\fB\\1\\\\fR" term "${term}")
        string(REGEX REPLACE "<([^>]*)>" "\\\\fI\\1\\\\fR" term "${term}")
    else()
        set(term "\\fB${term}\\fR")
    endif()
    set(${out} "${term}" PARENT_SCOPE)
endfunction()

# Renders one help text. LEVEL "page" is the program's own help: the usage
# line is the SYNOPSIS, the description the DESCRIPTION and each heading a
# section. LEVEL "command" is the help of one of its commands, a subsection
# headed by the command's usage line, its headings labels in it; the help
# option every command has is said once for all of them instead.
function(render_help out text level)
    set(roff "")
    set(section "")
    set(label "")     # a command's heading, given with its first entry
    set(term "")      # the entry being read, if any
    set(entry "")
    string(APPEND text "\n\n")
    while(NOT text STREQUAL "")
        pop_line(text line)

        # A continuation adds to the entry; anything else ends it.
        if(line MATCHES "^   +([^ ].*)$" AND NOT term STREQUAL "")
            string(APPEND entry " ${CMAKE_MATCH_1}")
            continue()
        endif()
        if(NOT term STREQUAL "" AND (level STREQUAL "page" OR NOT term MATCHES "^(-h, --help|--help-all)$"))
            roff_term(term "${term}" "${section}")
            roff(entry "${entry}")
            string(APPEND roff "${label}.TP\n${term}\n${entry}\n")
            set(label "")
        endif()
        set(term "")

        if(line MATCHES "^Usage: [^ ]+ ?(.*)$")
            roff(synopsis "${CMAKE_MATCH_1}")
            if(level STREQUAL "page")
                string(APPEND roff ".SH SYNOPSIS\n.B ${NAME}\n${synopsis}\n.SH DESCRIPTION\n")
            else()
                string(APPEND roff ".SS ${NAME} ${synopsis}\n")
            endif()
        elseif(line MATCHES "^([A-Z][^:]*):$")
            string(TOUPPER "${CMAKE_MATCH_1}" section)
            if(level STREQUAL "command")
                set(label ".PP\n\\fI${CMAKE_MATCH_1}:\\fR\n")
                continue()
            endif()
            string(APPEND roff ".SH ${section}\n")
            if(section STREQUAL "COMMANDS")
                string(APPEND roff "Each command also takes \\fB\\-h\\fR, \\fB\\-\\-help\\fR for its help.\n")
            endif()
        elseif(line MATCHES "^  ([^ ].*)$")
            string(REGEX MATCH "^([^ ]+( [^ ]+)*)(  +(.*))?$" parts "${CMAKE_MATCH_1}")
            set(term "${CMAKE_MATCH_1}")
            set(entry "${CMAKE_MATCH_4}")
            if(section STREQUAL "COMMANDS" AND level STREQUAL "page")
                help_text(command_help ${term})
                render_help(command_roff "${command_help}" command)
                string(APPEND roff "${command_roff}")
                set(term "")
            endif()
        elseif(NOT line STREQUAL "")
            # A paragraph; the first under a heading needs no break.
            roff(line "${line}")
            if(NOT roff MATCHES "(\\.SH [A-Z ]*|^\\.SS [^\n]*)\n$")
                string(APPEND roff ".PP\n")
            endif()
            string(APPEND roff "${line}\n")
        endif()
    endwhile()
    set(${out} "${roff}" PARENT_SCOPE)
endfunction()

help_text(help)
read_news(${NEWS})
if(NOT DEFINED NEWS_DATE_${VERSION})
    message(FATAL_ERROR "${NEWS} has no entry for version ${VERSION}")
endif()

# The summary: the description's first line, as a phrase.
string(REGEX MATCH "^[^\n]*\n([^\n]*)" summary "${help}")
string(REGEX REPLACE "\\.$" "" summary "${CMAKE_MATCH_1}")
if(summary MATCHES "^[A-Z][a-z ]")
    string(SUBSTRING "${summary}" 0 1 first)
    string(SUBSTRING "${summary}" 1 -1 rest)
    string(TOLOWER "${first}" first)
    set(summary "${first}${rest}")
endif()
roff(summary "${summary}")

string(TOUPPER "${NAME}" title)
render_help(body "${help}" page)
set(see_also "")
foreach(page IN LISTS SEE_ALSO)
    if(NOT see_also STREQUAL "")
        string(APPEND see_also ",\n")
    endif()
    string(APPEND see_also ".BR ${page} (1)")
endforeach()

file(WRITE ${OUTPUT} ".TH ${title} 1 ${NEWS_DATE_${VERSION}} \"${NAME} ${VERSION}\" \"User Commands\"\n"
                     ".SH NAME\n${NAME} \\- ${summary}\n${body}.SH SEE ALSO\n${see_also}\n")
execute_process(COMMAND ${GZIP} -9n --stdout ${OUTPUT} OUTPUT_FILE ${OUTPUT}.gz COMMAND_ERROR_IS_FATAL ANY)
