# Makes the files that tell what each version brought from NEWS:
#
#   cmake -DNEWS=NEWS -DVERSION=1.03 -DPACKAGE=wrpd6t -DMAINTAINER="Name <address>" -DGZIP=gzip
#         -DMETAINFO_IN=x.metainfo.xml.in -DMETAINFO=x.metainfo.xml -DCHANGELOG=changelog.gz
#         -P NewsFiles.cmake
#
# The AppStream file gets the versions as its <releases>, in place of the
# line @RELEASES@ of METAINFO_IN; CHANGELOG is the Debian changelog, which
# a native package keeps as /usr/share/doc/PACKAGE/changelog.gz. The newest
# version in NEWS must be the one being built.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/News.cmake)

# "Wed, 25 Nov 2026 00:00:00 +0000" for 2026-11-25: Debian changelogs are
# dated as mail is.
function(mail_date out date)
    string(REGEX MATCH "^([0-9]+)-0?([0-9]+)-0?([0-9]+)$" parts "${date}")
    set(year ${CMAKE_MATCH_1})
    set(month ${CMAKE_MATCH_2})
    set(day ${CMAKE_MATCH_3})
    # Sakamoto's day of the week, 0 for Sunday: the year counts from March.
    set(offsets 0 3 2 5 0 3 5 1 4 6 2 4)
    math(EXPR index "${month} - 1")
    list(GET offsets ${index} offset)
    if(month LESS 3)
        math(EXPR year "${year} - 1")
    endif()
    math(EXPR weekday "(${year} + ${year} / 4 - ${year} / 100 + ${year} / 400 + ${offset} + ${day}) % 7")
    set(weekdays Sun Mon Tue Wed Thu Fri Sat)
    set(months Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
    list(GET weekdays ${weekday} weekday)
    list(GET months ${index} month)
    string(SUBSTRING "${date}" 8 2 day)
    string(SUBSTRING "${date}" 0 4 year)
    set(${out} "${weekday}, ${day} ${month} ${year} 00:00:00 +0000" PARENT_SCOPE)
endfunction()

# The items of a version as an AppStream list, each item on one line.
function(release_list out items)
    set(list "")
    while(NOT items STREQUAL "")
        pop_line(items line)
        string(REPLACE "&" "&amp;" line "${line}")
        string(REPLACE "<" "&lt;" line "${line}")
        string(REPLACE ">" "&gt;" line "${line}")
        if(line MATCHES "^  \\* (.*)$")
            if(NOT list STREQUAL "")
                string(APPEND list "</li>\n")
            endif()
            string(APPEND list "          <li>${CMAKE_MATCH_1}")
        elseif(line MATCHES "^    (.*)$")
            string(APPEND list " ${CMAKE_MATCH_1}")
        endif()
    endwhile()
    set(${out} "${list}</li>\n" PARENT_SCOPE)
endfunction()

read_news(${NEWS})
list(GET NEWS_VERSIONS 0 newest)
if(NOT newest STREQUAL VERSION)
    message(FATAL_ERROR "The newest version in ${NEWS} is ${newest}, the program's is ${VERSION}: "
                        "tell in NEWS what ${VERSION} brings")
endif()

set(changelog "")
set(releases "")
foreach(version IN LISTS NEWS_VERSIONS)
    mail_date(date ${NEWS_DATE_${version}})
    if(NOT changelog STREQUAL "")
        string(APPEND changelog "\n")
    endif()
    string(APPEND changelog "${PACKAGE} (${version}) unstable; urgency=medium\n\n${NEWS_ITEMS_${version}}\n"
                            " -- ${MAINTAINER}  ${date}\n")
    release_list(items "${NEWS_ITEMS_${version}}")
    string(APPEND releases "    <release version=\"${version}\" date=\"${NEWS_DATE_${version}}\">\n"
                           "      <description>\n        <ul>\n${items}        </ul>\n      </description>\n"
                           "    </release>\n")
endforeach()

file(READ ${METAINFO_IN} metainfo)
string(REPLACE "@RELEASES@\n" "${releases}" metainfo "${metainfo}")
file(WRITE ${METAINFO} "${metainfo}")

string(REGEX REPLACE "\\.gz$" "" plain "${CHANGELOG}")

file(WRITE ${plain} "${changelog}")
execute_process(COMMAND ${GZIP} -9n --stdout ${plain} OUTPUT_FILE ${CHANGELOG} COMMAND_ERROR_IS_FATAL ANY)
