/* Exports the functions of quenrasimmemory.dll. */
#ifndef SIMULATOR_CALLERMEMORY_VISIBILITY_H
#define SIMULATOR_CALLERMEMORY_VISIBILITY_H

#ifdef CALLERMEMORY_BUILDING
#define CALLERMEMORY_API __declspec(dllexport)
#else
#define CALLERMEMORY_API __declspec(dllimport)
#endif

#endif
