# Fills a manual page's template.
#   cmake -DAWK=... -DTEMPLATE=... -DDOCUMENT=... -DPAGE=... -DPROJECT_VERSION=... -P make-page.cmake
execute_process(COMMAND "${AWK}" -f "${CMAKE_CURRENT_LIST_DIR}/from-markdown.awk" "${DOCUMENT}"
    OUTPUT_VARIABLE body RESULT_VARIABLE result OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "cannot convert ${DOCUMENT}")
endif()
configure_file("${TEMPLATE}" "${PAGE}" @ONLY)
file(TOUCH "${PAGE}")
