// The state of one application, and the blocks that all applications share. Internal: nothing outside the library
// depends on where a field lies.
#pragma once

#include "mchost/mdl/file_dialogs.h"
#include "mclib/frame/export.h"
#include "mclib/frame/resource_files.h"

struct ElmAttrGroup;      // mclib/elmattr/table.h
struct ElmAttrRecord;     // mclib/elmattr/table.h
struct ElmAttrEditBlock;  // the small attribute dialog's block
struct PlotPage;          // a page of a plot

// The working block of the file dialogs and of the preview's output settings.
struct FileDialogBlock {
    int32_t pageInfoChoice, pageChoice, printRange, firstPage, lastPage, pagesPerRow, plotCount, plotPlaced;
    char filter[256];
    char directory[256];
    char excelTemplate[256];
    char excelSheet[31];
    char decimalSign[2];
};

// The preview's extent.
struct PreviewExtent {
    int32_t width, height;
};

struct IdentityBlock {
    char companyName[256];
    char superUserName[256];
};

struct ElmAttrEditBlock {
    char label[84];
    int32_t kind;
    uint32_t lockMask;
};

constexpr int maxInitApps = 10;
constexpr int messageTitleSize = 513;

struct GlobalData {
    uint8_t upfIsOpen;
    uint8_t upfIsReadOnly;
    char** pageNames;  // ended by a null pointer
    char* dialogTitle;
    char* dialogLabel;
    char currentPageName[81];
    char applicationName[336];
    char introText[14][257];
    char messageTitles[4][messageTitleSize];  // of the kinds 4, 8, 1, 2
    void* pdmMenu;
    double pageAngle;       // degrees
    double convertedValue;  // result of the last unit conversion
    double pageScale;
    FileDialogResult fileListResult;
    ElmAttrGroup* groups;
    int32_t hourGlassTicks;
    int32_t selectedAttributeId;
    int32_t attributeCount;
    int32_t groupCount;
    int32_t placeForPlot;
    int32_t previewPage;
    int32_t printerRow;
    int32_t layoutState;
    int32_t exportToExcel;
    int32_t fileListFirstUse;
    int32_t isInitApp;
    int32_t pageInfoPage;
    int32_t pageNameCount;
    int32_t listBoxColumns, listBoxRows;
    int32_t nextAttributeId;
    int32_t initAppCount;
    int32_t selectionCount;
    int32_t hourGlassIndex;
    int32_t introSeconds;
    int32_t selectedRow;
    int32_t printPageCode;
    int32_t pageInfoSaved;
    int32_t printDevice;
    int32_t layoutHeight;
    ElementDescr* previewDescr;
    wchar_t* levelNameVariables[11];
    RscHandle appRscHandle;
    void* selectionRows;
    void* plotDescr;
    StringList* selectedFiles;
    StringList* selectList;
    ElmAttrEditBlock* attributeEditBlock;
    ElmAttrRecord* activeRecord;
    ElmAttrRecord* attributeList;
    PreviewExtent* previewExtent;
    PlotPage* plotList;
    IdentityBlock* identityBlockP;
    McHandle upfHandle;
    FileDialogBlock* fileDialogP;
    void (*initApps[maxInitApps])(void);
    void (*scaleFunction)(double oldScale, double newScale);
};
