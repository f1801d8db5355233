# What the Windows programs have in common.

# talu_harden(TARGET...): against overrun buffers, executed data and known addresses; a terminal server
# keeps its own files away from the program. Visual Studio does most of it unasked, and checks where calls
# lead to; GCC has nothing like that for Windows (its -fcf-protection serves a part of the processor that
# Windows uses for 64-bit programs only).
function(talu_harden)
  if(NOT WIN32)
    return()
  endif()
  foreach(target ${ARGN})
    if(MSVC)
      target_compile_options(${target} PRIVATE /guard:cf)
      target_link_options(${target} PUBLIC /guard:cf)
    else()
      target_compile_options(${target} PRIVATE -fstack-protector-strong)
      target_link_options(${target} PUBLIC -fstack-protector-strong
        -Wl,--dynamicbase -Wl,--nxcompat -Wl,--tsaware)
    endif()
    if(NOT target STREQUAL "hardening")
      target_link_libraries(${target} PUBLIC hardening)
    endif()
  endforeach()
endfunction()

# talu_tool(TARGET DESCRIPTION [DEPENDENCY]): a tool for Windows, hardened, with a manifest (no more rights
# than its caller has; the DEPENDENCY in it as it stands) and version information.
function(talu_tool target description)
  talu_harden(${target})
  if(NOT WIN32)
    return()
  endif()
  set(tool ${target})
  set(dependency "${ARGN}")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Tool.manifest.in ${target}.manifest @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Tool.rc.in ${target}.rc @ONLY)
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  set_source_files_properties(${resources} PROPERTIES
    OBJECT_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest)
  target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
  target_sources(${target} PRIVATE ${resources}
    ${PROJECT_SOURCE_DIR}/src/platform/win32/TrustAtStart.cpp)
endfunction()
