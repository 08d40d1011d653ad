/* MCLib: the shared run-time library of a family of drafting and engineering applications.
 *
 * This is the chief header: it includes the families. Each family header tells its own conventions; these hold for all:
 * plain C; 0 (MCLIB_SUCCESS) is success and 0x8000 (MCLIB_ERROR) failure for calls that return a status; narrow text is
 * Windows-1252; a result of a function whose name ends in P points into the library's storage, and its comment says what
 * overwrites it; blocks come from and go back to dlmSystem_mdlMalloc and dlmSystem_mdlFree; one thread. */
#ifndef MCLIB_H
#define MCLIB_H

#include "elmattr/attributes.h"
#include "elmattr/resources.h"
#include "forms/forms.h"
#include "forms/preview.h"
#include "frame/errors.h"
#include "frame/external.h"
#include "frame/main.h"
#include "frame/resource_files.h"
#include "frame/util.h"
#include "frame/win32.h"
#include "geometry/builders.h"
#include "geometry/cells.h"
#include "geometry/clothoid.h"
#include "geometry/elmdscr.h"
#include "geometry/lines.h"
#include "geometry/plotfence.h"
#include "geometry/textsize.h"
#include "geometry/userdata.h"
#include "text/formula.h"
#include "text/tagstring.h"
#include "print/ascii.h"
#include "print/delivery.h"
#include "print/hpgl.h"
#include "print/pcl.h"
#include "print/print.h"
#include "print/ps.h"
#include "print/raster.h"
#include "print/setup.h"
#include "project/application_data.h"
#include "project/dialog.h"
#include "project/store.h"
#include "text/fii.h"
#include "text/file.h"

#endif
