# The installation's ARM runtime in lib/: for each library variant that a
# link names by its extension ($(LibExt)), the C library, the maths library,
# the compiler's helper library (libcm for M-profile cores with Thumb-2,
# libarm for the others, libunwind for unwinding), the C++ library
# (libcxxabi, libcxxabi_noexcept) and the debug I/O library libprobeio.
#
# Each variant maps to a multilib of the cross compiler. Per multilib, in
# lib/multilib/<multilib directory>/, are built from runtime/:
#   libc.a, libc_small.a  the multilib's C library (the small one from
#                         newlib-nano) whose printf and scanf families call
#                         the formatter that the link selects
# The variants' names are relative links to these, or links to the
# multilib's own files where those serve as they are. The debug I/O library
# libprobeio, the system calls through the debugger, is built for each
# variant. v6-M and v8-M Baseline
# links name no helper library, so their C library carries libgcc's members.
#
# The start-up file of Cortex-M programs lies in targets/Cortex_M/, beside
# the default section placement.

configure_file(${PROJECT_SOURCE_DIR}/data/targets/Cortex_M/startup.c
  ${CMAKE_BINARY_DIR}/targets/Cortex_M/startup.c COPYONLY)
install(FILES ${PROJECT_SOURCE_DIR}/data/targets/Cortex_M/startup.c
  DESTINATION ${QUILLMAKE_INSTALL_DIR}/targets/Cortex_M)

block()
  find_program(QUILLMAKE_ARM_AR ${QUILLMAKE_GCC_TARGET}-ar)
  find_program(QUILLMAKE_ARM_OBJCOPY ${QUILLMAKE_GCC_TARGET}-objcopy)
  find_program(QUILLMAKE_ARM_NM ${QUILLMAKE_GCC_TARGET}-nm)
  if(NOT QUILLMAKE_ARM_GCC OR NOT QUILLMAKE_ARM_AR OR NOT QUILLMAKE_ARM_OBJCOPY OR NOT QUILLMAKE_ARM_NM)
    message(STATUS "ARM runtime libraries not built: the cross compiler or its binutils are missing")
    return()
  endif()

  # <LibExt without "_small">|<target options>. Each variant comes also with
  # "_small", which links the small C library.
  set(variants
    "_v6m_t_le_eabi|-mthumb -march=armv6s-m -mfloat-abi=soft"
    "_v7m_t_le_eabi|-mthumb -march=armv7-m -mfloat-abi=soft"
    "_v7em_t_le_eabi|-mthumb -march=armv7e-m -mfloat-abi=soft"
    "_v7em_fpv4_sp_d16_t_le_eabi|-mthumb -march=armv7e-m -mfpu=fpv4-sp-d16 -mfloat-abi=softfp"
    "_v7em_fpv4_sp_d16_hard_t_le_eabi|-mthumb -march=armv7e-m -mfpu=fpv4-sp-d16 -mfloat-abi=hard"
    "_v7em_fpv5_sp_d16_t_le_eabi|-mthumb -march=armv7e-m -mfpu=fpv5-sp-d16 -mfloat-abi=softfp"
    "_v7em_fpv5_sp_d16_hard_t_le_eabi|-mthumb -march=armv7e-m -mfpu=fpv5-sp-d16 -mfloat-abi=hard"
    "_v7em_fpv5_d16_t_le_eabi|-mthumb -march=armv7e-m -mfpu=fpv5-d16 -mfloat-abi=softfp"
    "_v7em_fpv5_d16_hard_t_le_eabi|-mthumb -march=armv7e-m -mfpu=fpv5-d16 -mfloat-abi=hard"
    "_v8mbl_t_le_eabi|-mthumb -march=armv8-m.base -mfloat-abi=soft"
    "_v8mml_t_le_eabi|-mthumb -march=armv8-m.main -mfloat-abi=soft"
    "_v8mml_dsp_t_le_eabi|-mthumb -march=armv8-m.main+dsp -mfloat-abi=soft"
    "_v8mml_fpv5_sp_d16_t_le_eabi|-mthumb -march=armv8-m.main -mfpu=fpv5-sp-d16 -mfloat-abi=softfp"
    "_v8mml_fpv5_sp_d16_hard_t_le_eabi|-mthumb -march=armv8-m.main -mfpu=fpv5-sp-d16 -mfloat-abi=hard"
    "_v8mml_dsp_fpv5_sp_d16_t_le_eabi|-mthumb -march=armv8-m.main+dsp -mfpu=fpv5-sp-d16 -mfloat-abi=softfp"
    "_v8mml_dsp_fpv5_sp_d16_hard_t_le_eabi|-mthumb -march=armv8-m.main+dsp -mfpu=fpv5-sp-d16 -mfloat-abi=hard"
    "_v81mml_t_le_eabi|-mthumb -march=armv8.1-m.main -mfloat-abi=soft"
    "_v81mml_fpv5_d16_hard_t_le_eabi|-mthumb -march=armv8.1-m.main -mfpu=fpv5-d16 -mfloat-abi=hard"
    "_v4t_a_le_eabi|-marm -march=armv4t -mfloat-abi=soft"
    "_v4t_t_le_eabi|-mthumb -march=armv4t -mfloat-abi=soft"
    "_v5te_a_le_eabi|-marm -march=armv5te -mfloat-abi=soft"
    "_v7a_a_le_eabi|-marm -march=armv7-a -mfloat-abi=soft"
    "_v7a_t_le_eabi|-mthumb -march=armv7-a -mfloat-abi=soft"
    "_v7a_vfpv3_d16_hard_a_le_eabi|-marm -march=armv7-a -mfpu=vfpv3-d16 -mfloat-abi=hard"
    "_v7a_vfpv3_d16_hard_t_le_eabi|-mthumb -march=armv7-a -mfpu=vfpv3-d16 -mfloat-abi=hard"
    "_v7r_a_le_eabi|-marm -march=armv7-r -mfloat-abi=soft"
    "_v7r_t_le_eabi|-mthumb -march=armv7-r -mfloat-abi=soft"
  )

  # The options of each multilib, from lines such as
  # "thumb/v7-m/nofp;@mthumb@march=armv7-m@mfloat-abi=soft".
  execute_process(COMMAND ${QUILLMAKE_ARM_GCC} -print-multi-lib
    OUTPUT_VARIABLE multilibs OUTPUT_STRIP_TRAILING_WHITESPACE)
  string(REPLACE ";" "|" multilibs "${multilibs}")
  string(REPLACE "\n" ";" multilibs "${multilibs}")
  foreach(line IN LISTS multilibs)
    string(REGEX MATCH "^([^|]*)\\|(.*)$" line "${line}")
    string(REPLACE "@" " -" options "${CMAKE_MATCH_2}")
    string(STRIP "${options}" options)
    set(multilib_options_${CMAKE_MATCH_1} "${options}")
  endforeach()

  set(sources ${PROJECT_SOURCE_DIR}/runtime)
  set(lib ${CMAKE_BINARY_DIR}/lib)
  set(outputs)
  set(built_multilibs)
  set(QUILLMAKE_TARGET_TOOL_LINKS)

  set(warnings -Wall -Wextra)
  if(QUILLMAKE_WERROR)
    list(APPEND warnings -Werror)
  endif()

  # Compiles <source> for a multilib into <object>.
  function(runtime_object object source options)
    separate_arguments(options UNIX_COMMAND "${options}")
    add_custom_command(OUTPUT ${object}
      COMMAND ${QUILLMAKE_ARM_GCC} ${options} ${ARGN} -Os -g -ffunction-sections -fdata-sections
        ${warnings} -I${sources}/probeio -c ${source} -o ${object}
      DEPENDS ${source} ${sources}/probeio/probeio.h
      COMMENT "Compiling ${object}" VERBATIM)
  endfunction()

  # Makes lib/<name> a relative link to lib/<target>, here and on install.
  function(runtime_link name target)
    add_custom_command(OUTPUT ${lib}/${name}
      COMMAND ${CMAKE_COMMAND} -E create_symlink ${target} ${lib}/${name}
      DEPENDS ${lib}/${target}
      COMMENT "Linking lib/${name} to ${target}")
    set(outputs ${outputs} ${lib}/${name} PARENT_SCOPE)
    install(CODE "
      set(link \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${QUILLMAKE_INSTALL_DIR}/lib/${name}\")
      message(STATUS \"Installing: \${link} -> ${target}\")
      file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${QUILLMAKE_INSTALL_DIR}/lib\")
      file(REMOVE \"\${link}\")
      file(CREATE_LINK \"${target}\" \"\${link}\" SYMBOLIC)")
  endfunction()

  foreach(variant IN LISTS variants)
    string(REGEX MATCH "^([^|]*)\\|(.*)$" variant "${variant}")
    set(ext ${CMAKE_MATCH_1})
    set(options "${CMAKE_MATCH_2}")
    separate_arguments(arguments UNIX_COMMAND "${options}")
    execute_process(COMMAND ${QUILLMAKE_ARM_GCC} ${arguments} -print-multi-directory
      OUTPUT_VARIABLE multilib OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE status ERROR_QUIET)
    execute_process(COMMAND ${QUILLMAKE_ARM_GCC} ${arguments} -print-file-name=libc.a
      OUTPUT_VARIABLE libc OUTPUT_STRIP_TRAILING_WHITESPACE)
    execute_process(COMMAND ${QUILLMAKE_ARM_GCC} ${arguments} -print-libgcc-file-name
      OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT status EQUAL 0 OR NOT DEFINED multilib_options_${multilib} OR NOT IS_ABSOLUTE "${libc}"
        OR NOT EXISTS "${libc}" OR NOT EXISTS "${libgcc}")
      message(STATUS "ARM runtime: no multilib for ${ext}")
      continue()
    endif()
    file(REAL_PATH "${libc}" libc)
    file(REAL_PATH "${libgcc}" libgcc)
    get_filename_component(newlib "${libc}" DIRECTORY)
    # The default multilib's directory is ".".
    set(dir multilib/${multilib})
    if(multilib STREQUAL ".")
      set(dir multilib/default)
    endif()

    if(NOT multilib IN_LIST built_multilibs)
      list(APPEND built_multilibs ${multilib})
      set(build ${CMAKE_BINARY_DIR}/runtime/${dir})
      set(moptions "${multilib_options_${multilib}}")

      # v6-M and v8-M Baseline links name no helper library.
      set(merge "")
      if(multilib MATCHES "v6-m|v8-m\\.base")
        set(merge -DLIBGCC=${libgcc})
      endif()
      foreach(flavour "" _small)
        set(objects)
        set(flags)
        set(source_libc ${newlib}/libc.a)
        if(flavour)
          set(flags --specs=nano.specs)
          set(source_libc ${newlib}/libc_nano.a)
        endif()
        foreach(family printf scanf)
          foreach(floating 0 1)
            set(object ${build}/libc${flavour}/${family}_selection_${floating}.o)
            runtime_object(${object} ${sources}/libc/${family}_selection.c "${moptions}" ${flags} -DFLOATING=${floating})
            list(APPEND objects ${object})
          endforeach()
          set(object ${build}/libc${flavour}/vf${family}.o)
          runtime_object(${object} ${sources}/libc/vf${family}.c "${moptions}" ${flags})
          list(APPEND objects ${object})
        endforeach()
        add_custom_command(OUTPUT ${lib}/${dir}/libc${flavour}.a
          COMMAND ${CMAKE_COMMAND} -DAR=${QUILLMAKE_ARM_AR} -DOBJCOPY=${QUILLMAKE_ARM_OBJCOPY}
            -DNM=${QUILLMAKE_ARM_NM} -DLIBC=${source_libc} "-DOBJECTS=${objects}" ${merge}
            -DOUTPUT=${lib}/${dir}/libc${flavour}.a -P ${PROJECT_SOURCE_DIR}/cmake/target_runtime_libc.cmake
          DEPENDS ${objects} ${source_libc} ${PROJECT_SOURCE_DIR}/cmake/target_runtime_libc.cmake
          COMMENT "Making lib/${dir}/libc${flavour}.a" VERBATIM)
        install(FILES ${lib}/${dir}/libc${flavour}.a DESTINATION ${QUILLMAKE_INSTALL_DIR}/lib/${dir})
      endforeach()
    endif()

    # The debug I/O library is built for the variant itself: ARM and Thumb
    # state enter the debugger differently.
    set(build ${CMAKE_BINARY_DIR}/runtime/probeio/${ext})
    set(probeio)
    foreach(name bkpt mempoll dcc syscalls)
      runtime_object(${build}/${name}.o ${sources}/probeio/${name}.c "${options}")
      list(APPEND probeio ${build}/${name}.o)
    endforeach()
    add_custom_command(OUTPUT ${lib}/libprobeio${ext}.a
      COMMAND ${CMAKE_COMMAND} -E rm -f ${lib}/libprobeio${ext}.a
      COMMAND ${QUILLMAKE_ARM_AR} rcs ${lib}/libprobeio${ext}.a ${probeio}
      DEPENDS ${probeio}
      COMMENT "Archiving lib/libprobeio${ext}.a")
    list(APPEND outputs ${lib}/libprobeio${ext}.a)
    install(FILES ${lib}/libprobeio${ext}.a DESTINATION ${QUILLMAKE_INSTALL_DIR}/lib)
    runtime_link(libprobeio${ext}_small.a libprobeio${ext}.a)

    # The helper library by architecture; v6-M and v8-M Baseline have none.
    set(helper "")
    if(ext MATCHES "^_(v7m|v7em|v8mml|v81mml)_")
      set(helper libcm)
    elseif(NOT ext MATCHES "^_(v6m|v8mbl)_")
      set(helper libarm)
    endif()
    foreach(flavour "" _small)
      set(name ${ext}${flavour})
      runtime_link(libc${name}.a ${dir}/libc${flavour}.a)
      quillmake_target_tool_link(lib libm${name}.a ${newlib}/libm.a)
      quillmake_target_tool_link(lib libunwind${name}.a ${libgcc})
      if(helper)
        quillmake_target_tool_link(lib ${helper}${name}.a ${libgcc})
      endif()
      # The whole C++ library, its runtime support among it. The small one
      # is built without exceptions: code that throws takes the other,
      # which needs no more of the small C library than it has.
      set(cxx ${newlib}/libstdc++.a)
      set(cxx_noexcept ${cxx})
      if(flavour AND EXISTS ${newlib}/libstdc++_nano.a)
        set(cxx_noexcept ${newlib}/libstdc++_nano.a)
      endif()
      if(EXISTS ${cxx})
        quillmake_target_tool_link(lib libcxxabi${name}.a ${cxx})
        quillmake_target_tool_link(lib libcxxabi_noexcept${name}.a ${cxx_noexcept})
      endif()
      # The C++ library's configuration headers of the multilib, named by
      # the variant for the system macro StudioCppIncDir.
      set(cxx_config ${QUILLMAKE_ARM_CXX_INCLUDE}/${QUILLMAKE_GCC_TARGET})
      if(NOT multilib STREQUAL ".")
        set(cxx_config ${cxx_config}/${multilib})
      endif()
      if(QUILLMAKE_ARM_CXX_INCLUDE AND EXISTS ${cxx_config}/bits/c++config.h)
        quillmake_target_tool_link(gcc/${QUILLMAKE_GCC_TARGET}/c++-config ${name} ${cxx_config})
      endif()
    endforeach()
  endforeach()

  add_custom_target(installed_target_runtime ALL DEPENDS ${outputs} ${QUILLMAKE_TARGET_TOOL_LINKS})
endblock()
