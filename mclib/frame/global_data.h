// The state of one application, and the blocks that all applications share. Internal: nothing outside the library
// depends on where a field lies.
#pragma once

#include "mchost/mdl/file_dialogs.h"
#include "mclib/frame/export.h"
#include "mclib/frame/resource_files.h"

typedef struct MdlCell MdlCell;

// What rooms hang in the block; only the room that writes the field knows what is in them.
namespace mc {
struct ElmAttrEditBlock;
struct ElmAttrGroup;
struct ElmAttrRecord;
struct PlotPage;
struct PreviewExtent;
}  // namespace mc

// FileDialogBlock::printRange
enum PrintRange { printCurrentPage = 0, printAllPages = 1, printPagesFromTo = 2 };

// The working block of the file dialogs and of the preview's output settings.
struct FileDialogBlock {
    int32_t pageInfoChoice, pageChoice, printRange, firstPage, lastPage, pagesPerRow, plotCount, plotPlaced;
    char filter[256];
    char directory[256];
    char excelTemplate[256];
    char excelSheet[31];
    char decimalSign[2];
};

struct IdentityBlock {
    char companyName[256];
    char superUserName[256];
};

constexpr int maxInitApps = 10;
constexpr int messageTitleSize = 513;

// Behind each field the room that writes it; "to come" is for dialogs that aren't there yet.
struct GlobalData {
    uint8_t upfIsOpen;                         // frame
    uint8_t upfIsReadOnly;                     // frame
    char** pageNames;                          // forms: ended by a null pointer
    char* dialogTitle;                         // dialogs
    char* dialogLabel;                         // dialogs
    char currentPageName[81];                  // forms: the page that is being made
    char applicationName[336];                 // startup
    char introText[14][257];                   // to come: intro and about boxes
    char messageTitles[4][messageTitleSize];   // frame: of the kinds 4, 8, 1, 2
    void* pdmMenu;                             // dialogs
    double pageAngle;                          // forms: degrees
    double convertedValue;                     // frame: result of the last unit conversion
    double pageScale;                          // forms
    FileDialogResult fileListResult;           // batch
    mc::ElmAttrGroup* groups;                  // elmattr
    int32_t hourGlassTicks;                    // frame
    int32_t selectedAttributeId;               // elmattr
    int32_t attributeCount;                    // elmattr
    int32_t groupCount;                        // elmattr
    int32_t placeForPlot;                      // forms
    int32_t previewPage;                       // forms
    int32_t printerRow;                        // print
    int32_t layoutState;                       // to come: attribute dialog
    int32_t exportToExcel;                     // forms
    int32_t fileListFirstUse;                  // batch
    int32_t isInitApp;                         // startup; frame, once the first design file is open
    int32_t pageInfoPage;                      // forms
    int32_t pageNameCount;                     // forms
    int32_t listBoxColumns, listBoxRows;       // dialogs
    int32_t nextAttributeId;                   // elmattr
    int32_t initAppCount;                      // frame
    int32_t selectionCount;                    // dialogs
    int32_t hourGlassIndex;                    // frame
    int32_t introSeconds;                      // to come: intro and about boxes
    int32_t selectedRow;                       // dialogs
    int32_t printPageCode;                     // print
    int32_t pageInfoSaved;                     // forms
    int32_t printDevice;                       // print
    int32_t layoutHeight;                      // to come: attribute dialog
    ElementDescr* previewDescr;                // forms
    wchar_t* levelNameVariables[11];           // elmattr
    RscHandle appRscHandle;                    // startup
    MdlCell* selectionRows;                    // dialogs
    void* plotDescr;                           // forms; print shows where it goes
    StringList* selectedFiles;                 // dialogs, while one of them is open
    StringList* selectList;                    // dialogs
    mc::ElmAttrEditBlock* attributeEditBlock;  // elmattr
    mc::ElmAttrRecord* activeRecord;           // elmattr
    mc::ElmAttrRecord* attributeList;          // elmattr
    mc::PreviewExtent* previewExtent;          // forms
    mc::PlotPage* plotList;                    // forms
    IdentityBlock* identityBlockP;             // frame
    McHandle upfHandle;                        // frame
    FileDialogBlock* fileDialogP;              // frame makes it; forms and print write the choices of pages,
                                               // dialogs filter and directory
    void (*initApps[maxInitApps])(void);       // frame
    void (*scaleFunction)(double oldScale, double newScale);  // frame
};
