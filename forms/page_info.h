// The page information dialog: what the title block of one page says, edited in the block mclibsd.
#pragma once

#include <optional>

#include "frame/global_data.h"
#include "project/blocks.h"

namespace forms {

enum { PAGE_INFO_DIALOG = 20024 };
void openPageInfo();
// The page of that number is on show from now on: reads what its title block says. An open page information dialog goes
// along to it, and asks before changes are lost.
void readPageInfo(GlobalData& data, int32_t page);
// The list of pages is a new one: an open page information dialog goes to the page on show in the same way.
void takeNewPages(GlobalData& data);
// Publishes the dialog's hooks.
void publishPageInfoHooks();

// To stand around the making of a page by the application, which may read title-block data into mclibsd: while a dialog
// edits that block, of whichever application, what stood in it is put back.
class KeepEditedBlock {
  public:
    KeepEditedBlock();
    ~KeepEditedBlock();
    KeepEditedBlock(const KeepEditedBlock&) = delete;
    KeepEditedBlock& operator=(const KeepEditedBlock&) = delete;

  private:
    std::optional<mclibSideData> kept_;
};

}  // namespace forms
