// Objects of a layer-effect file, read field by field.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "style/JsonTree.h"
#include "style/LayerStyle.h"

namespace gxtext {

// One object. It knows which of its fields were asked for: finish() reports the others, so that
// none is passed over. A getter reports a value of another type and answers as for none.
class LayerRecord {
public:
    // Both outlive the record.
    LayerRecord(const JsonValue::Object& fields, std::string path, std::vector<ImportLoss>& losses)
        : fields_(fields), asked_(fields.size()), path_(std::move(path)), losses_(losses) {}

    // Whether there is such a field; does not count as asking.
    bool has(std::string_view name) const;
    std::optional<double> number(std::string_view name);
    bool flag(std::string_view name, bool otherwise);
    std::optional<std::string> word(std::string_view name);
    // Of a number with a unit, in pixels.
    std::optional<double> length(std::string_view name);
    // Of a number whose unit is none, or nothing but the one that the file has for want of a
    // better.
    std::optional<double> percentage(std::string_view name);
    std::optional<LayerRecord> record(std::string_view name);
    // The objects of a list; an object that stands alone is one.
    std::vector<LayerRecord> records(std::string_view name);
    std::vector<double> numbers(std::string_view name);

    // The number, kept within the bounds.
    std::optional<double> bounded(std::string_view name, double least, double most);

    // What the word stands for; what is said for none, and for one that is not known.
    template <typename T, size_t count>
    T choice(std::string_view name, const std::array<std::pair<std::string_view, T>, count>& names,
             T otherwise) {
        const std::optional<std::string> given = word(name);
        if (!given) return otherwise;
        for (const auto& [known, value] : names) {
            if (known == *given) return value;
        }
        approximate(name, shown({*given}) + " is not known; the default is taken");
        return otherwise;
    }

    // Take note of a field, or of the object as a whole.
    void approximate(std::string_view name, std::string reason);
    void drop(std::string_view name, std::string reason);
    void approximateAll(std::string reason);
    void dropAll(std::string reason);
    // Reports a number other than the one that changes nothing.
    void dropUnless(std::string_view name, double neutral, const char* reason);

    // Reports what nobody asked for.
    void finish();

private:
    const JsonValue* find(std::string_view name);
    std::string pathOf(std::string_view name) const;
    void dropOther(std::string_view name, const JsonValue& value, const char* wanted);

    // The number of an object of a number and a unit, and the unit.
    struct Measure {
        double value;
        std::string units;
    };
    std::optional<Measure> measure(std::string_view name);

    const JsonValue::Object& fields_;
    std::vector<bool> asked_;
    std::string path_;
    std::vector<ImportLoss>& losses_;
};

}  // namespace gxtext
