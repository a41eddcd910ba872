// All lengths of a style, multiplied.
#include <cmath>

#include "style/FieldTable.h"

namespace gxtext {

namespace {

class Scaling {
public:
    explicit Scaling(double factor) : factor_(factor) {}

    template <typename T>
    void apply(const std::string& place, const Field<T>& field, T& object) {
        const auto* fill = std::get_if<Fill T::*>(&field.target);
        const auto* box = std::get_if<std::optional<Background> T::*>(&field.target);
        if (field.longest == 0 && !fill && !box) return;
        const Range range{field.range.min, field.longest};
        std::string path(place);
        path.append(".").append(field.name);
        if (fill) {
            for (Effect& effect : (object.**fill).effects) applyToEffect(path, effect);
        } else if (box) {
            if (!(object.**box)) return;
            for (const auto& row : backgroundFields()) apply(path, row, *(object.**box));
        } else if (const auto* number = std::get_if<float T::*>(&field.target)) {
            float& value = object.**number;
            value = static_cast<float>(scaled(value, range, path));
        } else if (const auto* count = std::get_if<int T::*>(&field.target)) {
            int& value = object.**count;
            value = whole(value, range, path);
        } else if (const auto* width = std::get_if<std::optional<int> T::*>(&field.target)) {
            auto& value = object.**width;
            if (value) value = whole(*value, range, path);
        } else if (const auto* padding = std::get_if<Padding T::*>(&field.target)) {
            Padding& value = object.**padding;
            for (int* side : {&value.left, &value.top, &value.right, &value.bottom}) {
                *side = whole(*side, range, path);
            }
        }
    }

    void applyToEffect(const std::string& place, Effect& effect) {
        for (const Field<Effect>* field : effectFields(effect.type)) apply(place, *field, effect);
    }

    void throwProblems(const std::string& source) {
        const size_t total = problems_.size();
        if (total > 0) throw StyleError(source, std::move(problems_), total);
    }

private:
    double scaled(double value, const Range& range, const std::string& path) {
        const double result = value * factor_;
        // A float's worth of rounding is no reason to refuse an end of the range.
        const double tolerance = 1e-6 * std::fabs(range.max);
        if (Range{range.min - tolerance, range.max + tolerance}.contains(result)) return result;
        problems_.push_back({path,
                             shortText(result) + " (" + shortText(value) + " scaled by " +
                                 shortText(factor_) + ") is out of range " + range.text(),
                             range.text()});
        return value;
    }
    int whole(int value, const Range& range, const std::string& path) {
        return static_cast<int>(std::floor(scaled(value, range, path) + 0.5));
    }

    const double factor_;
    std::vector<StyleProblem> problems_;
};

}  // namespace

Style Style::scaled(float factor) const {
    if (!(factor >= kMinScale && factor <= kMaxScale)) {
        throw Error("a scale of " + shortText(factor) + " is out of range " +
                    Range{kMinScale, kMaxScale}.text());
    }
    Style result = *this;
    Scaling scaling(factor);
    for (const Field<Style>& field : styleFields()) scaling.apply("$", field, result);
    for (size_t i = 0; i < result.effects.size(); i++) {
        scaling.applyToEffect("$.effects[" + std::to_string(i) + "]", result.effects[i]);
    }
    scaling.throwProblems(source.string());
    return result;
}

}  // namespace gxtext
