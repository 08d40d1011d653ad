// Pictures of descriptors and models as files.
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/view.h"
#include "mchost/picture/draft.h"
#include "mchost/picture/drawing.h"
#include "mchost/picture/sheet.h"
#include "mchost/view/area.h"

namespace host {
namespace {

std::optional<PictureKind> kindOf(const std::filesystem::path& path) {
    const std::string suffix = path.extension().string();
    return suffix.empty() ? std::nullopt : pictureKindNamed(std::string_view(suffix).substr(1));
}

int fail(const std::string& path, const char* why) {
    const std::string text = "The picture \"" + path + "\" wasn't made: " + why;
    reportError(narrowFromUtf8(text).text.c_str());
    return MDL_ERROR;
}

bool wholeRange(const ElementDescr* ed, Range3d& range) {
    if (ed) return mdlElmdscr_computeRange(&range.low, &range.high, ed, nullptr) == MDL_SUCCESS;
    ModelRef* model = mdlModelRef_getActive();
    return model && mdlModelRef_getRange(model, &range) == MDL_SUCCESS;
}

bool isUsable(const Range3d& r) {
    return isFinite(r.low) && isFinite(r.high) && r.low.x < r.high.x && r.low.y < r.high.y;
}

int writePicture(const std::string& path, const ElementDescr* ed, const Range3d* given, double widthMm, double dpi) {
    const auto kind = kindOf(path);
    if (!kind) return fail(path, "the name must end in .png, .svg or .pdf");
    if (!(widthMm > 0 && widthMm <= longestSideMm)) return fail(path, "the width must be above 0 and at most 10000 mm");
    if (*kind == PictureKind::png && !(dpi > 0)) return fail(path, "the resolution must be above 0");
    Range3d range;
    if (given)
        range = *given;
    else if (wholeRange(ed, range))
        range = withMargin(range);
    else
        return fail(path, "there is nothing to show");
    if (!isUsable(range)) return fail(path, "the range to show is empty");
    const double heightMm = widthMm * ((range.high.y - range.low.y) / (range.high.x - range.low.x));
    const bool tooLarge = *kind == PictureKind::png && std::max(widthMm, heightMm) / mmPerInch * dpi > mostPixels;
    if (!(heightMm > 0 && heightMm <= longestSideMm) || tooLarge)
        return fail(path, "it would be too large; take a smaller width or resolution");

    const Draft draft(path);
    if (const std::string problem = draft.problem(); !problem.empty()) return fail(path, problem.c_str());
    Sheet sheet(*kind, draft.path(), range, widthMm, dpi);
    MdlPen pen = sheet.pen();
    pen.range = &range;
    if (ed)
        walkDescriptor(ed, pen);
    else if (!drawModel(range, identityMatrix, pen))
        return fail(path, "the model can't be read");
    if (const char* why = sheet.finish()) return fail(path, why);
    return draft.place() ? MDL_SUCCESS : fail(path, "no file of that name can be put there");
}

}  // namespace
}  // namespace host

int mdlPicture_write(const char* fileName, const ElementDescr* ed, const Range3d* range, double widthMm,
                     double dpi) noexcept {
    if (!fileName) return MDL_ERROR;
    return host::guarded<int>(MDL_ERROR,
                              [&] { return host::writePicture(host::systemPath(fileName), ed, range, widthMm, dpi); });
}
