/* Attributes in resource files.
 *
 * The plain form keeps the values of the attributes that an application registers itself, each under its id: the
 * application registers first and then reads over them. The set form keeps a whole list with labels and order; reading
 * it replaces the list. Files of two older layouts are read too; writing always uses the newest one. Both work on the
 * table of the calling application and bring the attribute dialog up to date.
 *
 * All give 0, or MCLIB_ERROR as told. A file that can't be opened also gets a message. */
#ifndef MCLIB_ATTRIBUTE_RESOURCES_H
#define MCLIB_ATTRIBUTE_RESOURCES_H

#include "mclib/frame/resource_files.h"

/* Writes the plain form to the file, which is made when it isn't there. MCLIB_ERROR only when it can't be opened. */
MCLIB_EXPORT int mclibElmAttr_writeResource(const char *fileName);
/* The same to a file that is open for writing. MCLIB_ERROR, at the first one, when an attribute can't be written. */
MCLIB_EXPORT int mclibElmAttr_writeResourceByHandle(McHandle *file);
/* Writes the set form to the file, which is made when it isn't there. MCLIB_ERROR when it can't be opened or not all
 * of it could be written; what could be is in the file. */
MCLIB_EXPORT int mclibElmAttr_writeResourceExtended(const char *fileName);
/* Reads the plain form: attributes that the file lacks keep their values. MCLIB_ERROR only when the file can't be
 * opened. */
MCLIB_EXPORT int mclibElmAttr_readResource(const char *fileName);
/* The same from an open file; always 0 in a registered application. */
MCLIB_EXPORT int mclibElmAttr_readResourceByHandle(McHandle *file);
/* Reads the set form in the place of the list. Attributes of the old list with the same ids in the same order hand on
 * their hooks, options and captions, which a file can't hold. MCLIB_ERROR, with the list as it was, when the file can't
 * be opened or holds no set; also when it holds less than it says: the list is then what it holds, and nothing is
 * handed on. */
MCLIB_EXPORT int mclibElmAttr_readResourceExtended(const char *fileName);

#endif
