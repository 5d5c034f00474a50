#include "tools/cli/Commands.h"
#include "tools/cli/PieceFile.h"

#include "oud/model/NoteNames.h"
#include "oud/model/RestingMarks.h"
#include "oud/model/mMaqams.h"
#include "oud/model/mUdCtrl.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

namespace tarabix::cli {

namespace {

// The tuning a fresh window starts with.
constexpr int32_t kWindowDefaultTuning = 0;

int usage()
{
    std::fputs("usage: tarabix-cli scale MAQAM TONIC [--tuning ID] [--view 0..3] [--names western|solfege]\n", stderr);
    return 2;
}

int fail(const std::string& message, int code)
{
    std::fprintf(stderr, "tarabix-cli scale: %s\n", message.c_str());
    return code;
}

// The data the window reads: beside the program, or in ../share/tarabix of an installed layout.
std::filesystem::path dataFile(const std::string& name)
{
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", ec).parent_path();
    const std::filesystem::path beside = folder / name;
    if (std::filesystem::is_regular_file(beside, ec))
        return beside;
    return folder / ".." / "share" / "tarabix" / name;
}

// A maqam by its name (any letter case) or its 1-based place in maqams.ini; 0 when neither.
int32_t maqamIndex(const mMaqams& maqams, const std::string& text)
{
    if (const auto index = parseInt(text))
        return *index >= 1 && *index <= maqams.maqamCount() ? *index : 0;
    return maqams.findMaqam(text);
}

}  // namespace

// One line per resting mark of a maqam on a tonic, as the window draws them:
// note,cents,name,string,x,y,finger with x, y in picture units of the chosen view.
int scale(const Args& args)
{
    std::vector<std::string> positional;
    int32_t tuningId = kWindowDefaultTuning;
    bool tuningGiven = false;
    int32_t view = kRightPlayerView;
    int32_t names = kNamesWestern;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "--tuning" && hasValue) {
            const auto id = parseInt(args[++i]);
            if (!id)
                return fail("the tuning id must be a whole number, not '" + args[i] + "'", 2);
            tuningId = *id;
            tuningGiven = true;
        } else if (a == "--view" && hasValue) {
            const auto v = parseInt(args[++i]);
            if (!v || *v < kRightPlayerView || *v > kLeftMirrorView)
                return fail("the view must be 0, 1, 2 or 3, not '" + args[i] + "'", 2);
            view = *v;
        } else if (a == "--names" && hasValue) {
            const std::string& n = args[++i];
            if (n != "western" && n != "solfege")
                return fail("the names must be western or solfege, not '" + n + "'", 2);
            names = n == "western" ? kNamesWestern : kNamesSolfege;
        } else if (!a.starts_with("--")) {
            positional.push_back(a);
        } else {
            return usage();
        }
    }
    if (positional.size() != 2)
        return usage();

    mMaqams maqams;
    const std::string maqamsPath = dataFile("maqams.ini").string();
    if (const std::string error = maqams.loadMaqams(maqamsPath); !error.empty())
        return fail(maqamsPath + ": " + error, 1);
    mUdCtrl ud;
    const std::string tuningsPath = dataFile("tunings.ini").string();
    if (ud.loadTunings(tuningsPath) != kTuningsLoaded)
        return fail(tuningsPath + ": no usable tuning", 1);

    const int32_t maqam = maqamIndex(maqams, positional[0]);
    if (maqam == 0)
        return fail("no maqam '" + positional[0] + "' (a name from maqams.ini or 1.." +
                        std::to_string(maqams.maqamCount()) + ")",
                    2);
    const auto tonic = parseInt(positional[1]);
    if (!tonic || *tonic < 0 || *tonic > 11)
        return fail("the tonic must be a pitch class 0..11 (0 = C), not '" + positional[1] + "'", 2);
    int32_t tuningIndex = -1;
    ud.tuningById(tuningId, kNamesWestern, tuningIndex);
    if (tuningGiven && tuningIndex < 0)
        return fail("no tuning with id " + std::to_string(tuningId) + " in tunings.ini", 2);

    maqams.selectMaqam(maqam, *tonic);
    ud.setOrientation(view, false);
    ud.applyTuning(tuningId, 0);
    const RestingScale restingScale = restingScaleOf(maqams);
    for (const RestingMark& mark : restingMarks(ud, restingScale)) {
        const NotePitch degree = restingScale.degree(mark.degree);
        const std::string name = spelledNoteName(maqams.spellPitch(degree.note, degree.cents), names);
        std::printf("%d,%d,%s,%d,%d,%d,%d\n", mark.note, mark.cents, name.c_str(), mark.place.string,
                    mark.place.point.x, mark.place.point.y, ud.fingerForPitch(mark.note, mark.cents));
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace tarabix::cli
