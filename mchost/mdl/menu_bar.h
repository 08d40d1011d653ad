/* Menus: pulled down from the host's menu bar, or popping up over a dialog. A menu is made from its layout in a
 * resource file; each entry has a value and a hook. Choosing an entry calls its hook, in the application that brought
 * the menu, with ITEM_BUTTON, state 1 and the entry's value; the dialog is the one that the menu popped up over, else
 * null. */
#ifndef HOST_MDL_MENU_BAR_H
#define HOST_MDL_MENU_BAR_H

#include "dialog.h"

typedef struct MdlMenu MdlMenu; /* a menu of the menu bar; a handle that outlives it does no harm */

/* The host's own help, the last menu of the bar. */
enum { MDL_MENU_HELP = -522 };

/* Puts the menu `menuId` of `rscFile` (0: any open one) into the menu bar, in front of the menu with the id `beforeId`,
 * or last when there is none; null when there is no such menu. It goes with the current application at the latest. */
MDL_EXPORT MdlMenu *mdlDialog_menuBarInsertMenu(RscHandle rscFile, int32_t menuId, int32_t beforeId) MDL_NOEXCEPT;
/* Takes it out of the bar. MDL_ERROR when it isn't there. */
MDL_EXPORT int mdlDialog_menuBarDeleteMenu(MdlMenu *menu) MDL_NOEXCEPT;

/* Offers the menu `menuId` of `rscFile` (0: any open one) over a dialog, until an entry is chosen or the user goes on
 * with something else. MDL_ERROR when there is no such menu. */
MDL_EXPORT int mdlDialog_offerMenu(MdlDialog *dialog, RscHandle rscFile, int32_t menuId) MDL_NOEXCEPT;

#endif
