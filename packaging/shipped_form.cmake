# How everything is compiled and linked, except under sanitizers: hardened with the flags of Debian,
# all addresses bound before main, and no shared library except libc. Fortify is for optimized code
# only.
include(CheckLinkerFlag)

add_compile_options(-fPIE -fstack-protector-strong -Wformat -Werror=format-security)
add_compile_options("$<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,--as-needed)

# On some systems the static libstdc++ is in a separate package.
check_linker_flag(CXX "-static-libstdc++" CNATOOL_HAS_STATIC_LIBSTDCXX)
if(CNATOOL_STATIC)
  add_link_options(-static-pie)
elseif(CNATOOL_HAS_STATIC_LIBSTDCXX)
  add_link_options(-pie -static-libstdc++ -static-libgcc)
else()
  add_link_options(-pie)
endif()
