// A page on its way to a file or a printer.
#include <fcntl.h>

#include <cstring>
#include <filesystem>

#include "mchost/base/paths.h"
#include "mchost/base/unfinished.h"
#include "mchost/mdl/model.h"
#include "mchost/model/model_ref.h"
#include "mchost/picture/draft.h"
#include "mchost/picture/view.h"
#include "mchost/plot/plotter.h"
#include "mchost/printing/printers.h"
#include "mchost/space/vector.h"
#include "mchost/space/view.h"

namespace host {
namespace {

namespace fs = std::filesystem;

using Failure = std::optional<std::string>;

// Where the picture lies on the paper.
struct Fit {
    Range3d range;  // in the axes of the view
    double widthMm;
    Page page;
};

Range3d rangeInView(const Fence& area) {
    RangeBuilder range;
    for (const Point3d& corner : area.corners) range.add(rotate(viewRotation(area.view), corner));
    return range.range();
}

// As large as the paper takes, in its middle, upright unless it becomes larger by a turn.
Fit fitOn(const PaperSize& paper, double marginMm, const Range3d& range) {
    const double wide = range.high.x - range.low.x, high = range.high.y - range.low.y;
    const double w = paper.widthMm - 2 * marginMm, h = paper.heightMm - 2 * marginMm;
    const double upright = std::min(w / wide, h / high), aside = std::min(w / high, h / wide);
    const bool turned = aside > upright * (1 + 1e-9);
    const double scale = turned ? aside : upright;
    const double across = (turned ? high : wide) * scale, down = (turned ? wide : high) * scale;
    return {range,
            wide * scale,
            {paper.widthMm, paper.heightMm, (paper.widthMm - across) / 2, (paper.heightMm - down) / 2, turned}};
}

Failure drawPage(const PlotDriver& driver, const Fit& fit, int32_t view, const std::string& path) {
    const double longest = std::max(fit.page.widthMm, fit.page.heightMm) / mmPerInch * driver.resolution;
    if (driver.kind == PictureKind::png && longest > mostPixels) {
        return "the paper has more than 30000 dots on a side; give the plotter a smaller paper or resolution";
    }
    Sheet sheet(driver.kind, path, fit.range, fit.widthMm, driver.resolution, fit.page);
    if (!drawModels(view, fit.range, sheet)) return "a model can't be read";
    if (const char* why = sheet.finish()) return why;
    return std::nullopt;
}

Failure plotIntoFile(const PlotDriver& driver, const Fit& fit, int32_t view, const fs::path& target) {
    std::error_code error;
    const fs::path folder = target.has_parent_path() ? target.parent_path() : ".";
    if (!fs::is_directory(folder, error)) {
        return "there is no folder \"" + folder.string() + "\"; make it, or plot to another one";
    }
    if (fs::is_directory(target, error)) return "a folder has that name; give the plot another one";
    const Draft draft(target);
    if (std::string problem = draft.problem(); !problem.empty()) return problem;
    if (Failure failure = drawPage(driver, fit, view, draft.path())) return failure;
    if (!draft.place()) return "no file of that name can be put there";
    return std::nullopt;
}

// A printer's name, or its network name, as a place to print at.
std::optional<PrintTarget> targetOf(const std::string& name) {
    if (const auto target = printTargetOf(name)) return target;
    for (const Printer& printer : printers()) {
        if (printer.name != name) continue;
        return PrintTarget{
            .port = 0, .server = printer.server, .printer = printer.share.empty() ? printer.name : printer.share};
    }
    return std::nullopt;
}

// A file for a print job, gone with this.
class JobFile {
  public:
    explicit JobFile(std::string_view extension) {
        std::string name = (fs::temp_directory_path() / "plotXXXXXX").string() + std::string(extension);
        const SignalsHeld held;
        const int file = mkostemps(name.data(), static_cast<int>(extension.size()), O_CLOEXEC);
        if (file < 0) return;
        ::close(file);
        path_ = std::move(name);
        noted_.emplace(path_.c_str());
    }
    ~JobFile() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove(path_, ignored);
    }
    JobFile(const JobFile&) = delete;
    JobFile& operator=(const JobFile&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
    std::optional<Unfinished> noted_;
};

Failure plotOnPrinter(const MdlPlotDesc& descr, const Fit& fit) {
    const PlotDriver& driver = descr.plotter.driver;
    const auto target = targetOf(driver.printer);
    if (!target) return "the system knows no printer of that name; choose another one";
    const JobFile job(".pdf");
    if (job.path().empty()) return "no file can be written in the system's folder for temporary files";
    PlotDriver asPdf = driver;
    asPdf.kind = PictureKind::pdf;
    if (Failure failure = plotIntoFile(asPdf, fit, descr.area->view, job.path())) return failure;
    for (int32_t copy = 0; copy < descr.copies; ++copy) {
        if (const int status = printFile(job.path(), *target)) {
            return "the printer doesn't take it (" + std::string(std::strerror(status)) + ")";
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> plot(const MdlPlotDesc& descr, const std::string& path) {
    const PlotDriver& driver = descr.plotter.driver;
    const bool prints = path.empty() && !driver.printer.empty();
    const std::string file =
        path.empty() && !driver.outputName.empty() ? systemPath(driver.outputName + driver.extension) : path;
    const std::string start = "The plot " + (prints ? "on \"" + driver.printer : "to \"" + file) + "\" wasn't made: ";
    if (!prints && file.empty()) return "The plot wasn't made: it has no file name, and the plotter no printer.";
    if (!descr.area || activeModelSerial() != descr.area->model) {
        return start + "no area of the drawing is chosen; place a fence.";
    }
    const Fit fit = fitOn(descr.plotter.driver.papers[descr.paper], driver.marginMm, rangeInView(*descr.area));
    const Failure failure = prints ? plotOnPrinter(descr, fit) : plotIntoFile(driver, fit, descr.area->view, file);
    return failure ? std::optional(start + *failure + ".") : std::nullopt;
}

}  // namespace host
