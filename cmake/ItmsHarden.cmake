# What makes a mistake of ours hard to exploit: checked buffers and stacks, addresses that nobody can guess, tables that nobody can
# write to. Assertions of the standard library are not among it; the check preset has them.
option(ITMS_HARDEN "Check buffers and stacks at run time, and link so that addresses are random" ${PROJECT_IS_TOP_LEVEL})
if(NOT ITMS_HARDEN OR ITMS_BUILD_FUZZ)
    return()
endif()

# A build without optimisation, or with sanitizers, has no use for the checks.
add_compile_options(
    "$<$<CONFIG:Release,RelWithDebInfo>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
add_link_options(-Wl,-z,relro,-z,now)
# By options, not by a property of targets: precompiled headers have to be compiled as what uses them.
if(NOT BUILD_SHARED_LIBS)
    add_compile_options(-fPIE)
    add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
endif()
