# The compile and link options of the project's own targets, as functions: nothing here is global, so a
# project that embeds this one keeps its own flags.

# Warnings and sanitizers, for every target of the project.
function(okpcv_common_options target)
  target_compile_features(${target} PRIVATE cxx_std_20 c_std_99)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
    $<$<BOOL:${OKPCV_WERROR}>:-Werror>)
  if(OKPCV_SANITIZE)
    # Little optimisation, and no check that an address does not wrap, because either would double the time
    # that the compiler takes.
    target_compile_options(${target} PRIVATE
      -O1 -g1 -fsanitize=${OKPCV_SANITIZE} -fno-sanitize=pointer-overflow -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
    target_compile_definitions(${target} PRIVATE OKPCV_SANITIZED)
    target_link_options(${target} PRIVATE -fsanitize=${OKPCV_SANITIZE})
  endif()
  if(OKPCV_COVERAGE)
    target_compile_options(${target} PRIVATE -fprofile-instr-generate -fcoverage-mapping -O1)
    target_link_options(${target} PRIVATE -fprofile-instr-generate)
  endif()
endfunction()

# How the libraries' code is compiled: the SSE4.2 level, one fixed order of floating-point operations (no
# contraction into fused multiply-add), and nothing that would pull in the C++ runtime.
function(okpcv_library_code target)
  okpcv_common_options(${target})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_compile_definitions(${target} PRIVATE OKPCV_BUILDING)
  set(optimisation)
  if(NOT OKPCV_SANITIZE AND NOT OKPCV_COVERAGE)
    set(optimisation $<$<CONFIG:Release>:-O3>)
  endif()
  target_compile_options(${target} PRIVATE
    -msse4.2 -mpopcnt ${optimisation} -ffp-contract=off -fno-math-errno -fno-trapping-math
    -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-asynchronous-unwind-tables
    -fvisibility=hidden -fvisibility-inlines-hidden)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

# How a shared library is linked: by the C driver, every symbol resolved, relocations made read-only before
# the first call, and without the start files, whose initialisers and writable data it does not need.
function(okpcv_shared_library target)
  set_target_properties(${target} PROPERTIES
    LINKER_LANGUAGE C
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "$ORIGIN")
  target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now -Wl,--enable-new-dtags -Wl,--as-needed)
  if(OKPCV_SANITIZE OR OKPCV_COVERAGE)
    # The instruments bring their own run time, which has initialisers and data.
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_options(${target} PRIVATE $<$<BOOL:${OKPCV_COVERAGE}>:-fprofile-instr-generate>)
  else()
    target_link_options(${target} PRIVATE -Wl,-z,defs -nostartfiles)
  endif()
endfunction()
