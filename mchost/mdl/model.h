/* Design files and models.
 *
 * One design file is active at a time, with its model; others may be open beside it (files.h) or be shown in it
 * (reference.h). What is added, changed or deleted is in memory at once and in the file when the running command is
 * finished: when an application's main function or a call from the host into it is over, when the file is closed, or
 * with mdlSystem_saveDesignFile. */
#ifndef HOST_MDL_MODEL_H
#define HOST_MDL_MODEL_H

#include "types.h"

/* Makes an empty design file with one model. MDL_ERROR, with a line in the message centre, when a file of that name is
 * there or it can't be made. */
MDL_EXPORT int mdlSystem_createDesignFile(const char *name, int is3d) MDL_NOEXCEPT;
/* Closes the open design file (what it holds is stored first), opens this one and calls the new-design-file functions.
 * MDL_ERROR, with a line in the message centre and the file before still open, when it isn't there, isn't a design
 * file, is damaged, or another session has it open to write. A file that can't be written, or lies in a folder that
 * can't, is opened read-only. Any number of sessions may read; they see what was stored when they opened it. */
MDL_EXPORT int mdlSystem_newDesignFile(const char *name, int readOnly) MDL_NOEXCEPT;
/* Stores what was changed since the last time. MDL_ERROR, with a line in the message centre, when it can't be stored;
 * the file then holds what it held before. */
MDL_EXPORT int mdlSystem_saveDesignFile(void) MDL_NOEXCEPT;
/* Stores what was changed and closes the open design file, so that none is open; its file may then be moved. MDL_ERROR
 * when none is open or, with a line in the message centre, it couldn't be stored or isn't whole without the log beside
 * it (NAME-wal), which holds what was stored last; it is closed in any case. */
MDL_EXPORT int mdlSystem_closeDesignFile(void) MDL_NOEXCEPT;

MDL_EXPORT ModelRef *mdlModelRef_getActive(void) MDL_NOEXCEPT; /* null when no design file is open */
MDL_EXPORT int mdlModelRef_isReadOnly(ModelRef *model) MDL_NOEXCEPT;
MDL_EXPORT int mdlModelRef_is3D(ModelRef *model) MDL_NOEXCEPT;
/* UOR in a master unit; 10000 in a new file. Null model: 1 when no file is open. */
MDL_EXPORT double mdlModelRef_getUorPerMaster(ModelRef *model) MDL_NOEXCEPT;
/* Number of elements, components not counted. */
MDL_EXPORT uint32_t mdlModelRef_getElementCount(ModelRef *model) MDL_NOEXCEPT;
/* The range of all elements in UOR; MDL_ERROR for an empty model. */
MDL_EXPORT int mdlModelRef_getRange(ModelRef *model, Range3d *range) MDL_NOEXCEPT;

/* Its first byte is non-zero in a 3D file. */
MDL_EXPORT unsigned char *mgds_modesP;

#endif
