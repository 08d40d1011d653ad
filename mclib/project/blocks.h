/* What the title blocks of a drawing say: of the project, and of one page. One block of each for all applications;
 * dialogs reach them as mclibpd and mclibsd. All fields are Windows-1252 texts that end in a NUL. Of the three
 * sign-offs U, R and S, Nav is a name, Sig a signature and Dat a date. */
#ifndef MCLIB_PROJECT_BLOCKS_H
#define MCLIB_PROJECT_BLOCKS_H

typedef struct mclibProsjektData {
    char pron[31];    /* project number */
    char pros[5][81]; /* project text */
    char UNav[81], USig[42], UDat[31];
    char RNav[81], RSig[42], RDat[31];
    char SNav[81], SSig[42], SDat[31];
    char kost0[81], kost1[81], kost2[81], kost3[31], kost4[31]; /* further lines */
    char tegn[10][40];
} mclibProsjektData;

typedef struct mclibSideData {
    char reserved1[31];      /* not stored */
    char pageName[81];       /* the key; empty: no page is loaded */
    char pros[4][81];        /* lines 1 to 4 of the project text, for this page */
    char wantedPageName[81]; /* not stored */
    char UNav[81], USig[42], UDat[31];
    char RNav[81], RSig[42], RDat[31];
    char SNav[81], SSig[42], SDat[31];
    char reserved2[305]; /* not stored */
    char tegn[10][40];
    char kopo[20][21];
    char revs[11]; /* revision */
} mclibSideData;

#endif
