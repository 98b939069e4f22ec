// pgkit: how the module's declarations are exported and imported.
#ifndef PGKIT_EXPORT_H
#define PGKIT_EXPORT_H

#if defined(_WIN32)
#if defined(PGKIT_BUILDING_MODULE)
#define PGKIT_API __declspec(dllexport)
#else
#define PGKIT_API __declspec(dllimport)
#endif
#else
#define PGKIT_API __attribute__((visibility("default")))
#endif

// Flat functions have C linkage and can be declared from C and from C++.
#if defined(__cplusplus)
#define PGKIT_BEGIN_C extern "C" {
#define PGKIT_END_C }
#else
#define PGKIT_BEGIN_C
#define PGKIT_END_C
#endif

#endif
