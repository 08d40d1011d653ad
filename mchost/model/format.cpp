#include "mchost/model/format.h"

#include <algorithm>
#include <span>

namespace host {
namespace {

// Each version has the tables of those before it.
struct Table {
    uint32_t since;
    const char* sql;
};

constexpr Table tables[] = {
    {1,
     "CREATE TABLE model(id INTEGER PRIMARY KEY,is_3d INTEGER,uor_per_master REAL,next_position INTEGER,"
     "next_level INTEGER,chunks INTEGER,digest INTEGER)"},
    {1,
     "CREATE TABLE level(model INTEGER,id INTEGER,code INTEGER,name TEXT,color INTEGER,style INTEGER,weight INTEGER,"
     "fill_color INTEGER,style_modifiers INTEGER,style_scale REAL,style_start_width REAL,style_end_width REAL,"
     "over_color INTEGER,over_style INTEGER,over_weight INTEGER,PRIMARY KEY(model,id))WITHOUT ROWID"},
    {1,
     "CREATE TABLE line_style(model INTEGER,number INTEGER,name BLOB,pattern BLOB,PRIMARY KEY(model,number))"
     "WITHOUT ROWID"},
    {1,
     "CREATE TABLE text_style(model INTEGER,name TEXT,font INTEGER,just INTEGER,style INTEGER,fields INTEGER,"
     "flags INTEGER,slant REAL,line_spacing REAL,mode INTEGER,width REAL,height REAL,aspect REAL,"
     "PRIMARY KEY(model,name))WITHOUT ROWID"},
    {1, "CREATE TABLE chunk(model INTEGER,number INTEGER,digest INTEGER,bytes BLOB,PRIMARY KEY(model,number))"},
    {attachmentsSince,
     "CREATE TABLE attachment(model INTEGER,number INTEGER,file TEXT,transform BLOB,clip BLOB,shown INTEGER,"
     "hidden INTEGER,PRIMARY KEY(model,number))WITHOUT ROWID"},
    {viewsSince,
     "CREATE TABLE view(model INTEGER,number INTEGER,open INTEGER,rotation BLOB,origin BLOB,extent BLOB,"
     "controls INTEGER,PRIMARY KEY(model,number))WITHOUT ROWID"},
    {viewsSince,
     "CREATE TABLE view_level(model INTEGER,view INTEGER,name TEXT,PRIMARY KEY(model,view,name))WITHOUT ROWID"},
    {attachmentLevelsSince,
     "CREATE TABLE attachment_clip(model INTEGER,attachment INTEGER,element INTEGER,PRIMARY KEY(model,attachment))"
     "WITHOUT ROWID"},
    {attachmentLevelsSince,
     "CREATE TABLE attachment_level(model INTEGER,attachment INTEGER,view INTEGER,name TEXT,"
     "PRIMARY KEY(model,attachment,view,name))WITHOUT ROWID"},
};
static_assert(std::ranges::is_sorted(tables, {}, &Table::since) && std::end(tables)[-1].since == newestFormat);

}  // namespace

uint32_t formatOf(Database& database) {
    return static_cast<uint32_t>(database.number("PRAGMA user_version"));
}

void bringUpToDate(Database& database) {
    const uint32_t version = formatOf(database);
    if (version == newestFormat) return;
    for (const Table& table : tables) {
        if (table.since > version) database.run(table.sql);
    }
    database.run("PRAGMA user_version=" + std::to_string(newestFormat));
}

bool hasItsTables(Database& database) {
    const uint32_t version = formatOf(database);
    Statement s(database, "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY rowid");
    for (const Table& table : tables) {
        if (table.since <= version && (!s.step() || s.text(0) != table.sql)) return false;
    }
    return !s.step();
}

}  // namespace host
