// Makes the digests of a design file or cell library right again behind changes of its rows, so that what is checked
// behind them is reached. The digests are told in mchost/model/container.h.
#pragma once

#include <sqlite3.h>

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mchost/model/digest.h"

class RowDigest {
  public:
    // All values of the row.
    void add(sqlite3_stmt* row) {
        for (int column = 0; column < sqlite3_column_count(row); ++column) {
            const std::string_view type = sqlite3_column_decltype(row, column);
            if (type == "INTEGER") {
                append(sqlite3_column_int64(row, column));
            } else if (type == "REAL") {
                append(sqlite3_column_double(row, column) + 0.0);
            } else {
                const std::string bytes = bytesOf(row, column);
                append(static_cast<int64_t>(bytes.size()));
                bytes_ += bytes;
            }
        }
    }
    static std::string bytesOf(sqlite3_stmt* row, int column) {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
        return bytes ? std::string(bytes, static_cast<size_t>(sqlite3_column_bytes(row, column))) : std::string();
    }
    static int64_t of(const std::string& bytes) {
        return static_cast<int64_t>(host::digest(std::as_bytes(std::span(bytes.data(), bytes.size()))));
    }
    int64_t value() const { return of(bytes_); }

  private:
    template <class Value>
    void append(Value value) {
        bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    std::string bytes_;
};

inline void setModelDigests(sqlite3* database) {
    const auto each = [&](const char* sql, auto visit) {
        sqlite3_stmt* row = nullptr;
        sqlite3_prepare_v2(database, sql, -1, &row, nullptr);
        while (sqlite3_step(row) == SQLITE_ROW) visit(row);
        sqlite3_finalize(row);
    };
    std::string updates;
    each("SELECT rowid,bytes FROM chunk", [&](sqlite3_stmt* row) {
        updates += "UPDATE chunk SET digest=" + std::to_string(RowDigest::of(RowDigest::bytesOf(row, 1))) +
                   " WHERE rowid=" + std::to_string(sqlite3_column_int64(row, 0)) + ";";
    });
    RowDigest rows;
    for (const char* selection :
         {"SELECT is_3d,uor_per_master,next_position,next_level,chunks FROM model",
          "SELECT id,code,name,color,style,weight,fill_color,style_modifiers,style_scale,style_start_width,"
          "style_end_width,over_color,over_style,over_weight FROM level ORDER BY id",
          "SELECT number,name,pattern FROM line_style ORDER BY number DESC",
          "SELECT name,font,just,style,fields,flags,slant,line_spacing,mode,width,height,aspect FROM text_style "
          "ORDER BY name",
          "SELECT number,file,transform,clip,shown,hidden FROM attachment ORDER BY number",
          "SELECT number,open,rotation,origin,extent,controls FROM view ORDER BY number",
          "SELECT view,name FROM view_level ORDER BY view,name",
          "SELECT attachment,element FROM attachment_clip ORDER BY attachment",
          "SELECT attachment,view,name FROM attachment_level ORDER BY attachment,view,name"})
        each(selection, [&](sqlite3_stmt* row) { rows.add(row); });
    updates += "UPDATE model SET digest=" + std::to_string(rows.value());
    sqlite3_exec(database, updates.c_str(), nullptr, nullptr, nullptr);
}
