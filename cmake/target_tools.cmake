# The installation carries the ARM cross tools in the folders where its tool
# macros look by default: the compiler proper and the binutils in
# gcc/arm-none-eabi/bin, clang and its companions in llvm/bin. They are links
# to the system's tools, made in the build tree and again on install. Their
# targets are resolved to absolute paths here, at configure time, so that the
# links work from wherever the tree is installed.
#
# Missing tools are left out, and a build that needs one reports it when the
# program can't be started.

set(QUILLMAKE_GCC_TARGET arm-none-eabi)
set(QUILLMAKE_GCC_TOOLS_DIR gcc/${QUILLMAKE_GCC_TARGET}/bin)
set(QUILLMAKE_LLVM_TOOLS_DIR llvm/bin)

# Makes <dir>/<name> a link to <target>, in the build tree and on install.
function(quillmake_target_tool_link dir name target)
  set(link ${CMAKE_BINARY_DIR}/${dir}/${name})
  add_custom_command(OUTPUT ${link}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/${dir}
    COMMAND ${CMAKE_COMMAND} -E create_symlink ${target} ${link}
    COMMENT "Linking ${dir}/${name} to ${target}")
  set(QUILLMAKE_TARGET_TOOL_LINKS ${QUILLMAKE_TARGET_TOOL_LINKS} ${link} PARENT_SCOPE)
  install(CODE "
    set(link \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${QUILLMAKE_INSTALL_DIR}/${dir}/${name}\")
    message(STATUS \"Installing: \${link} -> ${target}\")
    file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${QUILLMAKE_INSTALL_DIR}/${dir}\")
    file(REMOVE \"\${link}\")
    file(CREATE_LINK \"${target}\" \"\${link}\" SYMBOLIC)")
endfunction()

block()
  # The tools that ARM builds run; a missing one is named at configure time.
  set(QUILLMAKE_GCC_COMPILERS cc1 cc1plus lto1)
  set(QUILLMAKE_GCC_BINUTILS as ld ar objcopy objdump strip)
  set(QUILLMAKE_LLVM_TOOLS clang ld.lld)
  # Linked when present, never named as missing.
  set(QUILLMAKE_GCC_EXTRA_TOOLS ranlib nm readelf size)
  set(QUILLMAKE_LLVM_EXTRA_TOOLS clang-tidy)

  set(QUILLMAKE_TARGET_TOOL_LINKS)
  set(QUILLMAKE_MISSING_TARGET_TOOLS)

  # The GNU driver knows where its own cc1, as and ld live; the prefixed
  # programs on the PATH stand in for binutils it doesn't report.
  find_program(QUILLMAKE_ARM_GCC ${QUILLMAKE_GCC_TARGET}-gcc)
  foreach(tool ${QUILLMAKE_GCC_COMPILERS} ${QUILLMAKE_GCC_BINUTILS} ${QUILLMAKE_GCC_EXTRA_TOOLS})
    set(path "")
    if(QUILLMAKE_ARM_GCC)
      execute_process(COMMAND ${QUILLMAKE_ARM_GCC} -print-prog-name=${tool}
        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE status)
      # A program the driver doesn't know comes back as its bare name.
      if(NOT status EQUAL 0 OR NOT IS_ABSOLUTE "${path}" OR NOT EXISTS "${path}")
        set(path "")
      endif()
    endif()
    if(NOT path AND NOT tool IN_LIST QUILLMAKE_GCC_COMPILERS)
      find_program(QUILLMAKE_ARM_${tool} ${QUILLMAKE_GCC_TARGET}-${tool})
      set(path ${QUILLMAKE_ARM_${tool}})
    endif()
    if(path)
      file(REAL_PATH "${path}" path)
      quillmake_target_tool_link(${QUILLMAKE_GCC_TOOLS_DIR} ${tool} ${path})
    elseif(NOT tool IN_LIST QUILLMAKE_GCC_EXTRA_TOOLS)
      list(APPEND QUILLMAKE_MISSING_TARGET_TOOLS ${tool})
    endif()
  endforeach()

  # The headers that the compiler proper reads with -nostdinc: the
  # compiler's own (include, include-fixed) beside its tools, and the C
  # library's as the installation's include/. The system macro StudioIncDir
  # of bin/config.xml names the three in the compiler's order.
  if(QUILLMAKE_ARM_GCC)
    foreach(dir include include-fixed)
      execute_process(COMMAND ${QUILLMAKE_ARM_GCC} -print-file-name=${dir}
        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
      if(IS_ABSOLUTE "${path}" AND IS_DIRECTORY "${path}")
        file(REAL_PATH "${path}" path)
        quillmake_target_tool_link(gcc/${QUILLMAKE_GCC_TARGET} ${dir} ${path})
        if(dir STREQUAL "include")
          set(libc_include "${path}/../../../../${QUILLMAKE_GCC_TARGET}/include")
        endif()
      else()
        list(APPEND QUILLMAKE_MISSING_TARGET_TOOLS gcc/${dir})
      endif()
    endforeach()
    if(libc_include AND IS_DIRECTORY "${libc_include}")
      file(REAL_PATH "${libc_include}" libc_include)
      quillmake_target_tool_link(. include ${libc_include})
      # The C++ library's headers; their configuration headers differ by
      # multilib and are linked per library variant with the runtime.
      execute_process(COMMAND ${QUILLMAKE_ARM_GCC} -dumpversion
        OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
      if(IS_DIRECTORY "${libc_include}/c++/${version}")
        set(QUILLMAKE_ARM_CXX_INCLUDE "${libc_include}/c++/${version}" PARENT_SCOPE)
        quillmake_target_tool_link(gcc/${QUILLMAKE_GCC_TARGET} c++ ${libc_include}/c++/${version})
      endif()
    else()
      list(APPEND QUILLMAKE_MISSING_TARGET_TOOLS include)
    endif()
  endif()

  foreach(tool ${QUILLMAKE_LLVM_TOOLS} ${QUILLMAKE_LLVM_EXTRA_TOOLS})
    find_program(QUILLMAKE_LLVM_${tool} NAMES ${tool} ${tool}-14)
    if(QUILLMAKE_LLVM_${tool})
      file(REAL_PATH "${QUILLMAKE_LLVM_${tool}}" path)
      quillmake_target_tool_link(${QUILLMAKE_LLVM_TOOLS_DIR} ${tool} ${path})
    elseif(NOT tool IN_LIST QUILLMAKE_LLVM_EXTRA_TOOLS)
      list(APPEND QUILLMAKE_MISSING_TARGET_TOOLS ${tool})
    endif()
  endforeach()

  # The module scan needs a clang-scan-deps that writes P1689 (clang 16 and
  # later); Debian 12 has it as clang-tools-19. It finds its own headers
  # from its real path.
  find_program(QUILLMAKE_CLANG_SCAN_DEPS NAMES clang-scan-deps-19 clang-scan-deps-18 clang-scan-deps-17
    clang-scan-deps-16)
  if(QUILLMAKE_CLANG_SCAN_DEPS)
    file(REAL_PATH "${QUILLMAKE_CLANG_SCAN_DEPS}" path)
    quillmake_target_tool_link(${QUILLMAKE_LLVM_TOOLS_DIR} clang-scan-deps ${path})
  else()
    message(STATUS "clang-scan-deps 16 or later not found: C++ module builds will report that the scanner "
      "can't run (scripts/install-deps.sh installs it)")
  endif()

  # The LTO library lies in the lib/ beside clang's real bin/; without the
  # development package only its versioned name exists. The link's name ends
  # in the host's shared library extension.
  set(QUILLMAKE_LIBLTO "")
  if(QUILLMAKE_LLVM_clang)
    file(REAL_PATH "${QUILLMAKE_LLVM_clang}" clang)
    get_filename_component(llvm_bin "${clang}" DIRECTORY)
    file(GLOB libltos "${llvm_bin}/../lib/libLTO.so.*")
    foreach(candidate "${llvm_bin}/../lib/libLTO.so" ${libltos})
      if(EXISTS "${candidate}")
        file(REAL_PATH "${candidate}" QUILLMAKE_LIBLTO)
        break()
      endif()
    endforeach()
  endif()
  if(QUILLMAKE_LIBLTO)
    quillmake_target_tool_link(${QUILLMAKE_LLVM_TOOLS_DIR} libLTO.so ${QUILLMAKE_LIBLTO})
  else()
    list(APPEND QUILLMAKE_MISSING_TARGET_TOOLS libLTO.so)
  endif()

  if(QUILLMAKE_MISSING_TARGET_TOOLS)
    list(JOIN QUILLMAKE_MISSING_TARGET_TOOLS " " missing)
    message(STATUS "ARM tools not found: ${missing}; ARM builds will report the missing tool "
      "(scripts/install-deps.sh installs them)")
  endif()

  add_custom_target(installed_target_tools ALL DEPENDS ${QUILLMAKE_TARGET_TOOL_LINKS})
endblock()
add_dependencies(quillmake installed_target_tools installed_tool_links)
