# What a Windows computer gets: the program's folder, as script/package-windows zips it, and the
# installer that CPack makes of the same folder.
set(system_root ${CMAKE_CURRENT_SOURCE_DIR}/windows)

install(TARGETS tk7-control tk7-rules RUNTIME DESTINATION .)

get_filename_component(qt ${Qt5Core_DIR}/../../.. ABSOLUTE)
set(run_time
    ${qt}/bin/Qt5Core.dll ${qt}/bin/Qt5Gui.dll ${qt}/bin/Qt5Widgets.dll ${qt}/bin/Qt5SerialPort.dll)
install(FILES ${qt}/plugins/platforms/qwindows.dll DESTINATION platforms)
install(FILES ${qt}/plugins/styles/qwindowsvistastyle.dll DESTINATION styles)

# The compiler's own, without its symbols, which are nine tenths of it.
foreach(library libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
        OUTPUT_VARIABLE source OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(stripped ${CMAKE_CURRENT_BINARY_DIR}/${library})
    execute_process(COMMAND ${CMAKE_STRIP} --strip-unneeded --preserve-dates -o ${stripped} ${source}
        COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND run_time ${stripped})
endforeach()
install(FILES ${run_time} DESTINATION .)

# The documents that need no more than the tool, as web pages with the pictures that they show.
find_program(PANDOC pandoc REQUIRED)
set(pages)
foreach(name user-guide rule-file windows)
    set(source ${PROJECT_SOURCE_DIR}/docs/${name}.md)
    set(page ${CMAKE_CURRENT_BINARY_DIR}/${name}.html)
    file(STRINGS ${source} title LIMIT_COUNT 1)
    string(REPLACE "# " "" title ${title})
    add_custom_command(OUTPUT ${page}
        COMMAND ${PANDOC} --from gfm --to html5 --standalone --eol lf
            --metadata lang=en --metadata pagetitle=${title}
            --lua-filter ${system_root}/links.lua --include-in-header ${system_root}/style.html
            --output ${page} ${source}
        DEPENDS ${source} ${system_root}/links.lua ${system_root}/style.html VERBATIM)
    list(APPEND pages ${page})
    file(STRINGS ${source} shown REGEX "\\(images/[^)]+\\)")
    foreach(line IN LISTS shown)
        string(REGEX MATCH "images/[^)]+" picture ${line})
        install(FILES ${PROJECT_SOURCE_DIR}/docs/${picture} DESTINATION docs/images)
    endforeach()
endforeach()
add_custom_target(windows_documents DEPENDS ${pages})
install(FILES ${pages} ${PROJECT_SOURCE_DIR}/docs/rules.schema.json DESTINATION docs)

install(FILES windows/licences.txt DESTINATION licences RENAME README.txt)
install(FILES copyright DESTINATION licences RENAME tk7-control.txt)
install(FILES ${qt}/LICENSE.LGPLv3 DESTINATION licences RENAME LGPL-3.txt)
install(FILES /usr/share/common-licenses/GPL-3 DESTINATION licences RENAME GPL-3.txt)
install(FILES /usr/share/doc/libqt5core5a/copyright DESTINATION licences RENAME qt.txt)
install(FILES /usr/share/doc/gcc-mingw-w64-base/copyright DESTINATION licences RENAME gcc.txt)
install(FILES /usr/share/doc/mingw-w64-common/copyright DESTINATION licences RENAME mingw-w64.txt)

set(CPACK_GENERATOR NSIS)
set(CPACK_PACKAGE_NAME tk7-control)
set(CPACK_PACKAGE_VENDOR "Brelland Sea Works")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME tk7-control-${PROJECT_VERSION}-windows-x64-setup)
set(CPACK_MODULE_PATH ${system_root}) # NSIS.template.in
set(CPACK_PRE_BUILD_SCRIPTS ${system_root}/list-files.cmake)
set(CPACK_NSIS_INSTALLER_ICON ${PROJECT_SOURCE_DIR}/src/resources/icons/tk7-control.ico)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
