# What a Windows build adds to the programs: UTF-16 arguments, the platform plugins a static Qt
# needs, and the installer (CPack's NSIS generator).

if(MINGW)
  # korvatek-cli starts at wmain; the window reads its arguments through Qt.
  target_link_options(korvatek-cli PRIVATE -municode)
endif()

if(TARGET korvatek_gui_tests)
  # A static Qt links only the default platform plugin ("windows") into a program: the window's
  # tests run on the offscreen platform and need that one as well.
  get_target_property(korvatek_qt_type Qt6::Core TYPE)
  if(korvatek_qt_type STREQUAL "STATIC_LIBRARY")
    qt_import_plugins(korvatek_gui_tests INCLUDE Qt6::QOffscreenIntegrationPlugin)
  endif()
endif()

# ---------------------------------------------------------------- installer
# Korvatek-<version>-win64.exe: both programs in one folder, a Start-menu entry, an uninstaller,
# and the association of .gpf and .gpf2 that the Options dialog writes (the same keys and
# values under the current user's classes), so a double click opens a container for a person
# who never opens Options; the dialog's boxes then show it as set.
install(TARGETS korvatek-cli RUNTIME DESTINATION .)
if(TARGET korvatek)
  install(TARGETS korvatek RUNTIME DESTINATION .)
  set(CPACK_PACKAGE_EXECUTABLES korvatek Korvatek)
endif()

set(CPACK_GENERATOR NSIS64)
set(CPACK_PACKAGE_NAME Korvatek)
set(CPACK_PACKAGE_VENDOR Korvatek)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Pictures and fonts of E71/EL71 fullflash dumps")
set(CPACK_PACKAGE_FILE_NAME "Korvatek-${PROJECT_VERSION}-win64")
set(CPACK_PACKAGE_INSTALL_DIRECTORY Korvatek)
set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
set(CPACK_NSIS_EXECUTABLES_DIRECTORY .)
set(CPACK_NSIS_DISPLAY_NAME Korvatek)
set(CPACK_NSIS_PACKAGE_NAME Korvatek)
set(CPACK_NSIS_ENABLE_UNINSTALL_BEFORE_INSTALL ON)
set(CPACK_STRIP_FILES ON)  # no symbol tables: half the size
# A 64-bit installer (NSIS builds a 32-bit one unless told otherwise): it runs where only
# 64-bit programs run, wine without its 32-bit part among them.
set(CPACK_NSIS_DEFINES "Target amd64-unicode")

set(korvatek_classes "Software\\\\Classes")
set(korvatek_open "$INSTDIR\\\\korvatek.exe %1")
set(CPACK_NSIS_EXTRA_INSTALL_COMMANDS "
  WriteRegStr HKCU '${korvatek_classes}\\\\.gpf' '' 'gpffile'
  WriteRegStr HKCU '${korvatek_classes}\\\\.gpf\\\\ShellNew' 'NullFile' ''
  WriteRegStr HKCU '${korvatek_classes}\\\\.gpf2' '' 'gpffile'
  WriteRegStr HKCU '${korvatek_classes}\\\\.gpf2\\\\ShellNew' 'NullFile' ''
  WriteRegStr HKCU '${korvatek_classes}\\\\gpffile' '' 'Graphic Patch File'
  WriteRegStr HKCU '${korvatek_classes}\\\\gpffile\\\\DefaultIcon' '' '$INSTDIR\\\\korvatek.exe,0'
  WriteRegStr HKCU '${korvatek_classes}\\\\gpffile\\\\shell\\\\open\\\\command' '' '${korvatek_open}'
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'")
# The uninstaller removes the association only while it still names this installation.
set(CPACK_NSIS_EXTRA_UNINSTALL_COMMANDS "
  ReadRegStr $0 HKCU '${korvatek_classes}\\\\gpffile\\\\shell\\\\open\\\\command' ''
  StrCmp $0 '${korvatek_open}' 0 korvatek_association_done
  DeleteRegKey HKCU '${korvatek_classes}\\\\gpffile'
  ReadRegStr $0 HKCU '${korvatek_classes}\\\\.gpf' ''
  StrCmp $0 'gpffile' 0 +2
  DeleteRegKey HKCU '${korvatek_classes}\\\\.gpf'
  ReadRegStr $0 HKCU '${korvatek_classes}\\\\.gpf2' ''
  StrCmp $0 'gpffile' 0 +2
  DeleteRegKey HKCU '${korvatek_classes}\\\\.gpf2'
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
  korvatek_association_done:")
include(CPack)
