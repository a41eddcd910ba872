#include "scene/ListedFonts.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

#include "scene/FaceFile.h"
#include "scene/SceneError.h"

namespace gxtext {

namespace {

namespace fs = std::filesystem;

bool isFontFile(const fs::path& path) {
    const std::string extension = path.extension().string();
    constexpr std::array known{".ttf", ".otf", ".ttc", ".otc"};
    return std::any_of(known.begin(), known.end(),
                       [&](const char* e) { return equalNames(extension, e); });
}

void addFaces(const fs::path& file, std::vector<FaceInfoPtr>& faces) {
    for (size_t i = 0, count = countFaces(file); i < count; i++) {
        if (FaceInfoPtr face = readFace(file, i)) faces.push_back(std::move(face));
    }
}

// Families that draw Han characters the way of one region say which one at the end of their name.
bool isForLanguage(const FaceInfo& face, const std::string& language) {
    struct Region {
        const char* language;
        const char* suffix;
    };
    constexpr Region regions[] = {
        {"ja", " JP"}, {"ko", " KR"}, {"zh-cn", " SC"}, {"zh-tw", " TC"}, {"zh-hk", " HK"}};
    return std::any_of(std::begin(regions), std::end(regions), [&](const Region& region) {
        return language == region.language && face.face.family.ends_with(region.suffix);
    });
}

// As many tell faces apart; folders may hold thousands of them.
constexpr size_t kMostAsked = 1000;

class ListedFonts : public FontCatalog {
public:
    ListedFonts(std::vector<FaceInfoPtr> faces, std::string whereabouts)
        : faces_(std::move(faces)), whereabouts_(std::move(whereabouts)) {}

    // The one that falls short in the least important way; the earliest of equals.
    FaceInfoPtr nearest(const FaceQuery& query) const override {
        const bool anyFamily = query.family.empty() || isGenericFamily(query.family);
        const auto asked = query.characters.begin() +
                           static_cast<ptrdiff_t>(std::min(query.characters.size(), kMostAsked));
        const auto shortcomings = [&](const FaceInfo& face) {
            const auto missing = std::count_if(query.characters.begin(), asked,
                                               [&](char32_t c) { return !face.covers(c); });
            const bool ownFamily = anyFamily || face.isOfFamily(query.family);
            const bool ownLanguage = query.language.empty() || isForLanguage(face, query.language);
            const int wantedWeight = query.bold ? 700 : 400;
            return std::tuple(!ownFamily, missing, face.color != query.color, !ownLanguage,
                              face.face.italic != query.italic,
                              std::abs(face.face.weight - wantedWeight));
        };
        FaceInfoPtr best = faces_.front();
        auto least = shortcomings(*best);
        for (const FaceInfoPtr& face : faces_) {
            const auto here = shortcomings(*face);
            if (here < least) std::tie(best, least) = std::pair(face, here);
        }
        return best;
    }

    std::vector<std::string> families() const override {
        std::set<std::string> names;
        for (const FaceInfoPtr& face : faces_) names.insert(face->face.family);
        return {names.begin(), names.end()};
    }

    std::string whereabouts() const override { return whereabouts_; }

private:
    void collect(CodePointSet& all) const override {
        for (const FaceInfoPtr& face : faces_) face->addCoverage(all);
    }

    const std::vector<FaceInfoPtr> faces_;  // at least one
    const std::string whereabouts_;
};

}  // namespace

std::shared_ptr<const FontCatalog> fontsOfFolder(const fs::path& folder) {
    std::error_code error;
    std::vector<fs::path> files;
    for (fs::recursive_directory_iterator it(folder, error), end; !error && it != end;
         it.increment(error)) {
        std::error_code ignored;
        if (it->is_regular_file(ignored) && isFontFile(it->path())) files.push_back(it->path());
    }
    if (error) throw FontError(folder.string(), "cannot read: " + error.message());
    std::sort(files.begin(), files.end());
    std::vector<FaceInfoPtr> faces;
    for (const fs::path& file : files) addFaces(file, faces);
    if (faces.empty()) {
        throw FontError(folder.string(), "no font in it", ".ttf, .otf, .ttc and .otc files");
    }
    return std::make_shared<ListedFonts>(std::move(faces), "lies in " + folder.string());
}

std::shared_ptr<const FontCatalog> fontsOfFiles(const std::vector<fs::path>& files) {
    std::vector<FaceInfoPtr> faces;
    for (const fs::path& file : files) {
        const size_t before = faces.size();
        addFaces(file, faces);
        if (faces.size() == before) {
            throw FontError(file.string(), "not a TrueType or OpenType font");
        }
    }
    if (faces.empty()) throw FontError("the list of font files", "empty");
    return std::make_shared<ListedFonts>(std::move(faces), "is in the list of font files");
}

}  // namespace gxtext
