# What is installed, and where: the program, its icon, the documents for users, and the built-in profiles as examples to
# copy from.
install(TARGETS corvale-gui RUNTIME COMPONENT corvale)
if(TARGET corvale-run)
    install(TARGETS corvale-run RUNTIME COMPONENT corvale)
    # Lets projects of CMake have tests that check their programs.
    install(FILES cmake/CorvaleConfig.cmake DESTINATION lib/cmake/Corvale COMPONENT corvale)
endif()
# What watches programs: loaded into them by corvale-run, which looks for it beside its own folder.
if(TARGET corvale_vendor)
    install(TARGETS corvale_vendor corvale_preload LIBRARY DESTINATION lib/corvale COMPONENT corvale)
endif()
install(FILES src/resources/icons/Corvale.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
    RENAME corvale-gui.svg
    COMPONENT corvale)
install(FILES "docs/Corvale User Manual.html" docs/profile-format.md docs/wire-format.md docs/session-format.md
    docs/continuous-integration.md docs/check-report.schema.json docs/layer.md CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT corvale)
install(DIRECTORY docs/images
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT corvale
    FILES_MATCHING PATTERN *.png)
install(DIRECTORY src/profiles/catalogue/builtin/
    DESTINATION ${CMAKE_INSTALL_DATADIR}/corvale/profiles
    COMPONENT corvale
    FILES_MATCHING PATTERN *.xml)
