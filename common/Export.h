#pragma once

// Marks what the shared library shows. Everything else stays hidden.
#if defined(_WIN32)
#ifdef VERAL3_BUILDING
#define VERAL3_API __declspec(dllexport)
#else
#define VERAL3_API __declspec(dllimport)
#endif
#else
#define VERAL3_API __attribute__((visibility("default")))
#endif
