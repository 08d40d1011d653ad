// Text files of several sheets. Internal: the exported calls make one sheet.
#pragma once

// Ends the sheet of the open text file; what is drawn from now on stands on the next one, behind a form feed.
void nextAsciiSheet();
