// The attributes of a drawing, and the resource files that keep them: looks for those that the input tells, and the
// user's own attributes, which are there for every road.
#pragma once

#include <string>
#include <vector>

#include <mclib/mclib.h>
#include <mclib/app/attribute_line.hpp>

namespace alignment {

using mcapp::ToldAttribute;

class Attributes {
  public:
    // Reads the user's own attributes when the file is there; an empty name stands for none. False after a message, as
    // from all calls that give a bool.
    bool begin(const std::string& ownFile);

    // An attribute of the drawing, and one of the user's own. Why it can't be; empty when it was added.
    std::string add(const ToldAttribute& attribute);
    std::string addOwn(const ToldAttribute& attribute);
    static bool isKnown(int id) { return mclibElmAttr_extractData(id, nullptr) == MCLIB_SUCCESS; }

    // Whether what is to be kept has a place: own attributes when there is no file of them, and a file for the looks,
    // which may be empty for none.
    bool canKeep(const std::string& looksFile, bool overwrite) const;
    // Gives the attributes of the drawing the looks that the file has for their numbers.
    bool readLooks(const std::string& file);
    // Keep what is told. The drawing must be done: nothing else is in the table then.
    bool saveLooks(const std::string& file);
    bool saveOwn();

  private:
    bool fillOwn();      // leaves the user's own attributes in the table, and no others
    bool fillDrawing();  // the drawing's, and no others
    bool addTold() const;

    std::string ownFile_;
    std::vector<ToldAttribute> told_, own_;
};

}  // namespace alignment
