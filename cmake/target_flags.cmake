# Flags that follow from the target and from what the build is for.

# 32-bit targets get a 64-bit time_t and off_t: the tool prints and logs
# times, which must stay right after 2038 (glibc 2.34 or later; musl 1.2 has
# a 64-bit time_t whatever the flags).
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
  include(CheckTypeSize)
  set(CMAKE_REQUIRED_DEFINITIONS -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64)
  set(CMAKE_EXTRA_INCLUDE_FILES time.h)
  check_type_size(time_t ONVIFCTRL_TIME_T_SIZE LANGUAGE CXX)
  unset(CMAKE_REQUIRED_DEFINITIONS)
  unset(CMAKE_EXTRA_INCLUDE_FILES)
  if(NOT ONVIFCTRL_TIME_T_SIZE EQUAL 8)
    message(WARNING "onvifCtrl: time_t is ${ONVIFCTRL_TIME_T_SIZE} bytes with this C library: "
                    "times after 2038 will be wrong (glibc 2.34 or musl 1.2 have a 64-bit time_t)")
  endif()
endif()

# Hardening as distributions build their packages: fortified libc calls,
# stack protector, format checks, a position-independent executable and a
# read-only relocation table resolved at start.
if(ONVIFCTRL_HARDEN)
  add_compile_options(-Wformat -Wformat-security -fstack-protector-strong
                      "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  include(CheckPIESupported)
  check_pie_supported(OUTPUT_VARIABLE ONVIFCTRL_PIE_OUTPUT LANGUAGES CXX)
  if(NOT CMAKE_CXX_LINK_PIE_SUPPORTED)
    message(WARNING "onvifCtrl: the linker cannot make a position-independent executable")
  endif()
  add_link_options(-Wl,-z,relro,-z,now)
endif()

# onvifctrl_product: compile flags for the code that goes on the camera (the
# core library and onvifCtrl), never for the tests, which use exceptions.
add_library(onvifctrl_product INTERFACE)
if(ONVIFCTRL_HARDEN)
  # The core is a static library, built -fPIC by default; it only ever ends
  # up in executables.
  target_compile_options(onvifctrl_product INTERFACE -fPIE)
endif()
set(ONVIFCTRL_LTO OFF)
if(ONVIFCTRL_FLASH)
  # The product throws nothing and asks no type at run time; a failure inside
  # the standard library (out of memory) aborts instead of throwing.
  target_compile_options(onvifctrl_product INTERFACE -Os -fno-exceptions -fno-rtti)
  include(CheckIPOSupported)
  check_ipo_supported(RESULT ONVIFCTRL_LTO OUTPUT ONVIFCTRL_LTO_OUTPUT LANGUAGES CXX)
  if(NOT ONVIFCTRL_LTO)
    # Link-time optimisation drops unused code by itself; without it, one
    # section per function lets the linker do so.
    message(STATUS "onvifCtrl: no link-time optimisation with this toolchain")
    target_compile_options(onvifctrl_product INTERFACE -ffunction-sections -fdata-sections)
  endif()
endif()

# The link of an executable that goes on the camera.
function(onvifctrl_product_executable target)
  if(ONVIFCTRL_FLASH)
    target_link_options(${target} PRIVATE -Os -Wl,-O1 -Wl,--as-needed)
    if(ONVIFCTRL_LTO)
      set_target_properties(${target} onvifctrl_core PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
    else()
      target_link_options(${target} PRIVATE -Wl,--gc-sections)
    endif()
  endif()
  if(ONVIFCTRL_STATIC_LIBSTDCXX)
    target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
endfunction()
