/* Formulas: an arithmetic expression as text, with named parameters, to a number.
 *
 * Letter case and spaces don't count. In order of increasing binding: + and -, * and /, ^ (from right to left), a minus
 * in front of an operand (so -2^2 is 4), brackets, and functions of one argument in brackets: ABS ACOS ASIN ATAN COS
 * COSH EXP LOG LOG10 POW10 ROUND SIN SINH SQR SQRT TAN TANH TRUNC XCORR. Angles are radians. PI is a number, and so is
 * the name of a parameter: letters (A to Z) and digits, the first one a letter. A name of a function and PI hide a
 * parameter of that name. */
#ifndef MCLIB_FORMULA_H
#define MCLIB_FORMULA_H

#include "mclib/frame/export.h"

/* Parameters of a call, characters of a formula, bytes of a parameter's slot (5 characters and NUL), characters of one
 * number, and symbols that may be open at a time: each bracket, function, operator and operand counts one, so that 47
 * brackets may stand within each other. */
enum {
    MCLIB_FORMULA_PARAMETERS = 50,
    MCLIB_FORMULA_LENGTH = 512,
    MCLIB_FORMULA_NAME_SIZE = 6,
    MCLIB_FORMULA_NUMBER_LENGTH = 79,
    MCLIB_FORMULA_NESTING = 49
};

/* The value of `formula`; *errorP is 0. The next call overwrites it. On a failure *errorP is 1 and the result points to
 * 0.0: bad syntax, a name that nobody knows (a console line shows where), a division by 0, a function outside its
 * range, or more than the limits above allow (too many parameters and too long a formula have a console line each).
 * `parameterNames` is a row of `parameterCount` slots of MCLIB_FORMULA_NAME_SIZE bytes; the names are upper-cased in
 * place, so they can't be a literal; the first of two equal ones counts. The arrays aren't touched when the count is 0
 * or above the limit. Nothing is allocated. */
MCLIB_EXPORT double *mclibParse_parseFormulaP(const char *formula, int *errorP, int parameterCount,
                                              char *parameterNames, const double *parameterValues);

/* Why a formula has no value. */
enum {
    MCLIB_FORMULA_GOOD = 0,
    MCLIB_FORMULA_SYNTAX = 1,       /* what stands here can't stand here, or something is missing */
    MCLIB_FORMULA_UNKNOWN_NAME = 2,
    MCLIB_FORMULA_DIVISION = 3,     /* by 0, in front of here */
    MCLIB_FORMULA_RANGE = 4,        /* a function of a value that it doesn't take, in front of here */
    MCLIB_FORMULA_LIMIT = 5         /* over one of the limits above */
};

/* What the last call of mclibParse_parseFormulaP ended with. *columnP, which may be null, gets the column, from 1, of
 * the number, name or sign at which it ended; 1 for a good formula and for a limit of the whole call. */
MCLIB_EXPORT int mclibParse_getFormulaError(int *columnP);

#endif
