/* Levels and line styles of a model.
 *
 * A level has an id (from 1, never given twice), a code, a name, and symbology for the elements that take theirs by
 * level. A new model has the level "Default", id 1, code 0. A level "Level N" or "N" with N from 1 to 63 gets the code
 * N where that is free; every other one gets the next free code from 64 on. Names are told apart by case: "Road" and
 * "ROAD" are two levels.
 *
 * A null model means the active one. While no design file is open it means a table of levels of the session's own, so
 * that what is made then has its levels too; that table is stored nowhere. */
#ifndef HOST_MDL_LEVEL_H
#define HOST_MDL_LEVEL_H

#include "types.h"

MDL_EXPORT int mdlLevel_isValidByName(ModelRef *model, const wchar_t *name) MDL_NOEXCEPT; /* 1 when the model has it */
MDL_EXPORT int mdlLevel_getIdFromName(LevelId *idP, ModelRef *model, LevelId parent, const wchar_t *name) MDL_NOEXCEPT;
MDL_EXPORT int mdlLevel_getIdFromCode(LevelId *idP, ModelRef *model, int32_t code) MDL_NOEXCEPT;
MDL_EXPORT int mdlLevel_getName(wchar_t *name, int32_t size, ModelRef *model, LevelId id) MDL_NOEXCEPT;
MDL_EXPORT int mdlLevel_getCode(int32_t *codeP, ModelRef *model, LevelId id) MDL_NOEXCEPT;
/* From the id in *idP to the next one that the model has; from 0 to the first. MDL_ERROR behind the last one. */
MDL_EXPORT int mdlLevel_getNextId(LevelId *idP, ModelRef *model) MDL_NOEXCEPT;
/* Creates a level; MDL_ERROR for a name that is empty, too long (511 characters) or there already, or a model that
 * can't be written. The level lasts until the session ends, and is stored by mdlLevelTable_rewrite or with the first
 * element that is on it. */
MDL_EXPORT int mdlLevel_create(LevelId *idP, ModelRef *model, const wchar_t *name) MDL_NOEXCEPT;
/* What elements on the level take by level: colour, style, modifiers of a named style (LineStyleParams), weight, fill
 * colour. Null pointers leave alone; dash and gap scales of the modifiers don't count. */
MDL_EXPORT int mdlLevel_setElementSymbology(ModelRef *model, LevelId id, const uint32_t *color, const int32_t *style,
                                            const void *styleParams, const uint32_t *weight,
                                            const uint32_t *fillColor) MDL_NOEXCEPT;
/* What the level overrides while it is on; zeros are none. */
MDL_EXPORT int mdlLevel_setSymbology(ModelRef *model, LevelId id, uint32_t color, int32_t style,
                                     uint32_t weight) MDL_NOEXCEPT;
/* The same, and for each of the three whether it is overridden, 1 or 0; null pointers are left alone. MDL_ERROR for a
 * level that the model hasn't. */
MDL_EXPORT int mdlLevel_getSymbology(uint32_t *color, int32_t *style, uint32_t *weight, int32_t *overridesColor,
                                     int32_t *overridesStyle, int32_t *overridesWeight, ModelRef *model,
                                     LevelId id) MDL_NOEXCEPT;
MDL_EXPORT int mdlLevel_getElementSymbology(uint32_t *color, int32_t *style, uint32_t *weight, ModelRef *model,
                                            LevelId id) MDL_NOEXCEPT;
/* Stores the levels of the model in its file; those that came with cells alone are stored with the first element. */
MDL_EXPORT int mdlLevelTable_rewrite(ModelRef *model) MDL_NOEXCEPT;
/* The model of the level library, or null: the design file that the configuration variable MS_LEVELLIB names. */
MDL_EXPORT ModelRef *mdlLevelLibrary_getModelRef(void) MDL_NOEXCEPT;

/* ---- line styles: 0 to 7 are built in and have no name; named ones have numbers below 0 ---- */

/* Defines a named line style in the model: dashes and gaps in turn, in master units, at most 32. Its number (-1 and
 * down, by file) goes to numberP. A name that is there is redefined under its number. */
MDL_EXPORT int mdlLineStyle_define(int32_t *numberP, ModelRef *model, const char *name, const double *pattern,
                                   int32_t count) MDL_NOEXCEPT;
/* The number of a named style; 0 and MDL_ERROR when the model hasn't one of that name. */
MDL_EXPORT int mdlLineStyle_numberFromName(int32_t *numberP, const char *name, ModelRef *model) MDL_NOEXCEPT;
/* The name of a style number below 0 into `name` (64 bytes). */
MDL_EXPORT int mdlLineStyle_nameFromNumber(char *name, int32_t number, ModelRef *model) MDL_NOEXCEPT;

/* The dashes and gaps of a style number below 0, in master units, into `pattern` (32 values). */
MDL_EXPORT int mdlLineStyle_getPattern(double *pattern, int32_t *countP, int32_t number, ModelRef *model) MDL_NOEXCEPT;

/* Value of a row that is a named style in the list below. */
enum { MDL_STYLE_NAMED = 0x7FFFFF00 };
/* Fills a list model of one column with the model's styles: value the number 0 to 7, or MDL_STYLE_NAMED with the name
 * as its text. MDL_ERROR without a model. */
MDL_EXPORT int mdlLevelList_getStyleListModel(ListModel *list, ModelRef *model) MDL_NOEXCEPT;

#endif
