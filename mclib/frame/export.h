/* What every family header starts from: the export mark, the status values and the host's types. */
#ifndef MCLIB_EXPORT_H
#define MCLIB_EXPORT_H

#include "mchost/mdl/types.h"

#ifdef __cplusplus
#define MCLIB_EXPORT extern "C" __attribute__((visibility("default")))
#else
#define MCLIB_EXPORT extern __attribute__((visibility("default")))
#endif

/* Results of calls that return a status. */
enum { MCLIB_SUCCESS = 0, MCLIB_ERROR = 0x8000 };

/* Message lists, addressed by list and number. */
enum { MCLIB_QUESTIONS = 20003, MCLIB_ARROW_PROMPTS = 20004, MCLIB_ERRORS = 20005, MCLIB_LANGUAGE_TEXTS = 20007 };
/* The message of MCLIB_ERRORS that every failed allocation shows. */
enum { MCLIB_OUT_OF_MEMORY = 14 };

/* The state of one application: mclib/frame/global_data.h, not for applications. */
typedef struct GlobalData GlobalData;

#endif
