// The page information dialog: what the title block of one page says, edited in the block mclibsd.
#pragma once

#include <optional>

#include "mchost/mdl/dialog.h"
#include "mclib/frame/global_data.h"
#include "mclib/project/blocks.h"

namespace mc::forms {

void openPageInfo();
// The page of that number is on show from now on: reads what its title block says. An open page information dialog goes
// along to it, and asks before changes are lost.
void readPageInfo(GlobalData& data, int32_t page);
// The list of pages is a new one: an open page information dialog goes to the page on show in the same way.
void takeNewPages(GlobalData& data);
extern const DialogHook pageInfoHooks[];

// To stand around the making of a page by the application, which may read title-block data into mclibpd and mclibsd:
// while a dialog edits one of these blocks, of whichever application, what stood in it is put back.
class KeepEditedBlocks {
  public:
    KeepEditedBlocks();
    ~KeepEditedBlocks();
    KeepEditedBlocks(const KeepEditedBlocks&) = delete;
    KeepEditedBlocks& operator=(const KeepEditedBlocks&) = delete;

  private:
    std::optional<mclibProsjektData> project_;
    std::optional<mclibSideData> page_;
};

}  // namespace mc::forms
