/* MCLib: the shared run-time library of a family of drafting and engineering applications.
 *
 * This is the chief header: it includes the families. Each family header tells its own conventions; these hold for all:
 * plain C; 0 (MCLIB_SUCCESS) is success and 0x8000 (MCLIB_ERROR) failure for calls that return a status; narrow text is
 * Windows-1252; a result of a function whose name ends in P points into the library's storage, and its comment says
 * what overwrites it; blocks come from and go back to dlmSystem_mdlMalloc and dlmSystem_mdlFree; one thread. */
#ifndef MCLIB_H
#define MCLIB_H

#include "mclib/arrows/arrows.h"
#include "mclib/batch/design_file_lists.h"
#include "mclib/design/element_search.h"
#include "mclib/design/merge.h"
#include "mclib/design/text_search.h"
#include "mclib/dialogs/dialogs.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/elmattr/resources.h"
#include "mclib/forms/forms.h"
#include "mclib/forms/preview.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/external.h"
#include "mclib/frame/main.h"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/util.h"
#include "mclib/frame/win32.h"
#include "mclib/geometry/builders.h"
#include "mclib/geometry/cells.h"
#include "mclib/geometry/clothoid.h"
#include "mclib/geometry/elmdscr.h"
#include "mclib/geometry/lines.h"
#include "mclib/geometry/plotfence.h"
#include "mclib/geometry/textsize.h"
#include "mclib/geometry/userdata.h"
#include "mclib/text/formula.h"
#include "mclib/text/tagstring.h"
#include "mclib/print/ascii.h"
#include "mclib/print/delivery.h"
#include "mclib/print/hpgl.h"
#include "mclib/print/pcl.h"
#include "mclib/print/print.h"
#include "mclib/print/ps.h"
#include "mclib/print/raster.h"
#include "mclib/print/scale.h"
#include "mclib/print/setup.h"
#include "mclib/project/application_data.h"
#include "mclib/project/dialog.h"
#include "mclib/project/store.h"
#include "mclib/text/fii.h"
#include "mclib/text/file.h"

#endif
