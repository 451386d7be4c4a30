# How everything is compiled and linked, but under sanitizers: hardened as Debian's flags do it,
# all addresses bound before main, and without a shared library other than libc. Fortify is for
# optimized code only.
include(CheckLinkerFlag)

add_compile_options(-fPIE -fstack-protector-strong -Wformat -Werror=format-security)
add_compile_options("$<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,--as-needed)

# Some systems keep the static libstdc++ in a package of its own.
check_linker_flag(CXX "-static-libstdc++" CNATOOL_HAS_STATIC_LIBSTDCXX)
if(CNATOOL_STATIC)
  add_link_options(-static-pie)
elseif(CNATOOL_HAS_STATIC_LIBSTDCXX)
  add_link_options(-pie -static-libstdc++ -static-libgcc)
else()
  add_link_options(-pie)
endif()
