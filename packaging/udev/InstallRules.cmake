# Runs at the installation: puts the rules for serial adapters where udev looks, or says what is left to do.
file(GLOB rules ${RULES_SOURCE_DIR}/*.rules)
if(CMAKE_INSTALL_PREFIX MATCHES "^(/usr(/local)?)?/*$")
  file(INSTALL ${rules} DESTINATION "${CMAKE_INSTALL_PREFIX}/lib/udev/rules.d")
else()
  set(folder "${CMAKE_INSTALL_PREFIX}/${SHARED_DIR}/udev")
  file(INSTALL ${rules} DESTINATION "${folder}")
  message(STATUS "udev does not look for rules there. To keep other services away from the radio's serial adapter:\n"
    "   sudo cp ${folder}/*.rules /etc/udev/rules.d/ && sudo udevadm control --reload")
endif()
