// The layout of design files and cell libraries, by version. A file of an older version is read as it is and brought up
// to the newest with the first change that is stored in it.
#pragma once

#include <cstdint>

#include "mchost/base/sqlite.h"

namespace host {

constexpr uint32_t newestFormat = 4;
constexpr uint32_t attachmentsSince = 2, viewsSince = 3, attachmentLevelsSince = 4;

// Makes the tables of the newest version in an empty database, or what an older one lacks, and tells the version in it.
void bringUpToDate(Database& database);
// Whether the database, of a version that is known, has just the tables of that version.
bool hasItsTables(Database& database);
uint32_t formatOf(Database& database);

}  // namespace host
