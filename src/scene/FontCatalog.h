// The faces that a text may be drawn with, and how to ask for one.
#pragma once

#include <bitset>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace gxtext {

constexpr size_t kCodePoints = 0x110000;
using CodePointSet = std::bitset<kCodePoints>;

// One face of a font file.
struct FontFace {
    std::string file;
    int index = 0;     // inside a collection
    int weight = 400;  // 1-1000
    bool italic = false;
    std::string family;  // its own name
    std::string
        locales;  // what it is preferred for: "ja", "und-Arab", ...; empty for no preference
    std::string variations{};  // axis settings that it is drawn with: "'wght' 700"
    bool operator==(const FontFace&) const = default;
};

// What a variable font can be set to.
struct FontAxis {
    std::string tag;
    float min = 0.0f;
    float initial = 0.0f;
    float max = 0.0f;
};

// A face with what is known before it is opened for drawing.
struct FaceInfo {
    FontFace face;
    bool color = false;              // holds pictures rather than outlines
    std::vector<std::string> names;  // of its family, in every language
    std::vector<FontAxis> axes;      // none unless it is variable
    std::function<bool(char32_t)> covers;
    std::function<void(CodePointSet&)> addCoverage;  // to what is in the set

    // Whether its family goes by this name, in whatever case.
    bool isOfFamily(const std::string& name) const;
};
using FaceInfoPtr = std::shared_ptr<const FaceInfo>;

// What is asked of a face. Nothing is a must: the nearest one is the answer.
struct FaceQuery {
    std::string family;
    bool bold = false;
    bool italic = false;
    bool color = false;
    std::string language{};              // "ja", "zh-cn", "und-zsye", ...; empty for any
    std::vector<char32_t> characters{};  // to be covered, as many as possible
};

// Safe from any thread.
class FontCatalog {
public:
    FontCatalog() = default;
    FontCatalog(const FontCatalog&) = delete;
    FontCatalog& operator=(const FontCatalog&) = delete;
    virtual ~FontCatalog() = default;

    // The nearest face; null when there is none at all.
    virtual FaceInfoPtr nearest(const FaceQuery& query) const = 0;
    // Names of all families, each once, in alphabetical order.
    virtual std::vector<std::string> families() const = 0;
    // Completes "no font ...": "is installed", "lies in fonts/".
    virtual std::string whereabouts() const = 0;

    // Whether any face has the character. The first call looks at all of them.
    bool covers(char32_t c) const;

private:
    // What any face has.
    virtual void collect(CodePointSet& all) const = 0;

    mutable std::once_flag collected_;
    mutable std::unique_ptr<const CodePointSet> all_;
};

// "sans-serif", "monospace", ...: names that stand for whatever family serves best.
bool isGenericFamily(const std::string& name);

// ASCII letters of either case are the same.
bool equalNames(const std::string& a, const std::string& b);

}  // namespace gxtext
