// pgkit: how the declarations of the module, and of its companion imaging module, are exported and
// imported.
#ifndef PGKIT_EXPORT_H
#define PGKIT_EXPORT_H

#if defined(_WIN32)
#if defined(PGKIT_BUILDING_MODULE)
#define PGKIT_API __declspec(dllexport)
#else
#define PGKIT_API __declspec(dllimport)
#endif
#if defined(PGVIEW_BUILDING_MODULE)
#define PGVIEW_API __declspec(dllexport)
#else
#define PGVIEW_API __declspec(dllimport)
#endif
#else
#define PGKIT_API __attribute__((visibility("default")))
#define PGVIEW_API __attribute__((visibility("default")))
#endif

// Compilers of Microsoft's kind delete an object through slot 0 of its virtual table: a function of
// the object and of a mode that says how. Others have two destructors there instead. Classes
// that both kinds of hosts delete declare such a function first, where it becomes slot 0 for the
// others; for the former it is what their virtual destructor makes of itself.
#if defined(_WIN32) && !defined(_MSC_VER)
#define PGKIT_SLOT_0(declaration) declaration
#else
#define PGKIT_SLOT_0(declaration)
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
