// Pictures of descriptors and models as files.
#include "mchost/picture/picture.h"

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

const char* whyNot(const std::optional<PictureKind>& kind, const PictureFrame& frame) {
    const auto& [range, widthMm, dpi] = frame;
    if (!kind) return "the name must end in .png, .svg or .pdf";
    if (!(widthMm > 0 && widthMm <= longestSideMm)) return "the width must be above 0 and at most 10000 mm";
    if (*kind == PictureKind::png && !(dpi > 0)) return "the resolution must be above 0";
    if (!isUsable(range)) return "the range to show is empty";
    const double heightMm = widthMm * ((range.high.y - range.low.y) / (range.high.x - range.low.x));
    const bool tooLarge = *kind == PictureKind::png && std::max(widthMm, heightMm) / mmPerInch * dpi > mostPixels;
    const bool usable = heightMm > 0 && heightMm <= longestSideMm && !tooLarge;
    return usable ? nullptr : "it would be too large; take a smaller width or resolution";
}

const char* drawDescriptor(const ElementDescr* ed, const Range3d& range, Sheet& sheet) {
    MdlPen pen = sheet.pen();
    pen.range = &range;
    if (ed)
        walkDescriptor(ed, pen);
    else if (!drawModel(range, identityMatrix, pen))
        return "the model can't be read";
    return nullptr;
}

}  // namespace

int writePicture(const std::string& path, const PictureFrame& frame, const DrawPicture& draw) {
    const auto kind = kindOf(path);
    if (const char* why = whyNot(kind, frame)) return fail(path, why);
    const Draft draft(path);
    if (const std::string problem = draft.problem(); !problem.empty()) return fail(path, problem.c_str());
    Sheet sheet(*kind, draft.path(), frame.range, frame.widthMm, frame.dpi);
    if (const char* why = draw(sheet)) return fail(path, why);
    if (const char* why = sheet.finish()) return fail(path, why);
    return draft.place() ? MDL_SUCCESS : fail(path, "no file of that name can be put there");
}

}  // namespace host

using namespace host;

int mdlPicture_write(const char* fileName, const ElementDescr* ed, const Range3d* range, double widthMm,
                     double dpi) noexcept {
    if (!fileName) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::string path = systemPath(fileName);
        PictureFrame frame = {.range = {}, .widthMm = widthMm, .dpi = dpi};
        if (range)
            frame.range = *range;
        else if (wholeRange(ed, frame.range))
            frame.range = withMargin(frame.range);
        else
            return fail(path, "there is nothing to show");
        return writePicture(path, frame, [&](Sheet& sheet) { return drawDescriptor(ed, frame.range, sheet); });
    });
}
