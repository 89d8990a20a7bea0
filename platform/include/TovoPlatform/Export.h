#ifndef TOVOPLATFORM_EXPORT_H
#define TOVOPLATFORM_EXPORT_H

// What hosts see of a shared library. Each library has a mark of its own for its declarations,
// since on Windows a library exports what others import. Hosts of the static libraries define
// TOVO_STATIC, which the CMake targets and pkg-config do for them.

#if !defined(_WIN32)
// Marks a declaration in the library that defines it.
#define TOVO_EXPORT __attribute__((visibility("default")))
// Marks a declaration in the hosts of the library that defines it.
#define TOVO_IMPORT __attribute__((visibility("default")))
#elif defined(TOVO_STATIC)
#define TOVO_EXPORT
#define TOVO_IMPORT
#else
#define TOVO_EXPORT __declspec(dllexport)
#define TOVO_IMPORT __declspec(dllimport)
#endif

// CMake defines TovoPlatform_EXPORTS where the library itself is compiled.
#ifdef TovoPlatform_EXPORTS
#define TOVO_PLATFORM_API TOVO_EXPORT
#else
#define TOVO_PLATFORM_API TOVO_IMPORT
#endif

#endif
