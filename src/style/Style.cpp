#include "style/Style.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "style/FieldTable.h"
#include "style/StyleReader.h"

namespace gxtext {

namespace {

constexpr std::array<std::string_view, kEffectTypeCount> kEffectNames{
    "stroke",         "outerShadow",    "innerShadow", "outerGlow", "innerGlow",
    "linearGradient", "radialGradient", "pattern",     "bevel",     "emboss"};

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

struct Closer {
    void operator()(FILE* file) const { fclose(file); }
};

[[noreturn]] void failToRead(const char* what, const std::string& file, int error) {
    throw Error(file + ": cannot " + what + ": " + std::strerror(error));
}

// One byte past the limit is enough to see that it is passed.
std::string readUpTo(size_t limit, const std::string& file) {
    // A pipe may never give any.
    std::error_code ignored;
    if (std::filesystem::is_fifo(file, ignored)) throw Error(file + ": cannot read: a pipe");
    const std::unique_ptr<FILE, Closer> stream(fopen(file.c_str(), "rb"));
    if (!stream) failToRead("open", file, errno);
    std::string bytes(limit + 1, '\0');
    bytes.resize(fread(bytes.data(), 1, bytes.size(), stream.get()));
    if (ferror(stream.get())) failToRead("read", file, errno);
    return bytes;
}

// Gives one member of an object the value of a row.
template <typename T>
struct InitialSetter {
    const Field<T>& field;
    T& object;

    void operator()(float T::*member) const { object.*member = static_cast<float>(number()); }
    void operator()(int T::*member) const { object.*member = static_cast<int>(number()); }
    void operator()(bool T::*member) const { object.*member = std::get<bool>(field.initial); }
    void operator()(Color T::*member) const { object.*member = std::get<Color>(field.initial); }
    void operator()(std::string T::*member) const { object.*member = name(); }
    void operator()(Padding T::*member) const {
        const auto side = static_cast<int>(number());
        object.*member = {side, side, side, side};
    }
    void operator()(const Choice<T>& choice) const {
        for (size_t i = 0; i < choice.names.size(); i++) {
            if (choice.names[i] == name()) choice.set(object, static_cast<int>(i));
        }
    }
    // The rest have nothing but what their types begin with.
    template <typename Other>
    void operator()(const Other& /*target*/) const {}

    double number() const { return std::get<double>(field.initial); }
    std::string_view name() const { return std::get<std::string_view>(field.initial); }
};

template <typename T>
void setInitial(const Field<T>& field, T& object) {
    if (field.initial.index() != 0) std::visit(InitialSetter<T>{field, object}, field.target);
}

// Whether two objects have one value in a field.
template <typename T>
bool sameValue(const Field<T>& field, const T& a, const T& b) {
    return std::visit(
        [&](const auto& target) {
            using Kind = std::decay_t<decltype(target)>;
            if constexpr (std::is_same_v<Kind, std::monostate>) {
                return true;
            } else if constexpr (std::is_same_v<Kind, Choice<T>>) {
                return target.get(a) == target.get(b);
            } else {
                return a.*target == b.*target;
            }
        },
        field.target);
}

}  // namespace

std::optional<Color> parseColor(std::string_view text) {
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#') return std::nullopt;
    uint32_t value = text.size() == 7 ? 0xFFu : 0u;
    for (const char c : text.substr(1)) {
        const int digit = hexDigit(c);
        if (digit < 0) return std::nullopt;
        value = value << 4 | static_cast<uint32_t>(digit);
    }
    return Color{value};
}

std::string formatColor(Color color) {
    char text[16];
    if (color.argb >> 24 == 0xFF) {
        snprintf(text, sizeof(text), "#%06X", color.argb & 0xFFFFFFu);
    } else {
        snprintf(text, sizeof(text), "#%08X", color.argb);
    }
    return text;
}

std::optional<Padding> parsePadding(std::string_view text) {
    static const Range range = styleField("padding").range;
    std::array<int, 4> sides{};
    size_t count = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    if (text.ends_with(',')) return std::nullopt;
    while (count < sides.size()) {
        const auto [next, error] = std::from_chars(at, end, sides[count]);
        if (error != std::errc() || !range.contains(sides[count])) return std::nullopt;
        count++;
        at = next;
        if (at == end || *at++ != ',') break;
    }
    if (at != end || (count != 1 && count != 4)) return std::nullopt;
    if (count == 1) sides.fill(sides[0]);
    return Padding{sides[0], sides[1], sides[2], sides[3]};
}

std::string_view effectName(EffectType type) {
    return kEffectNames[static_cast<size_t>(type)];
}

std::optional<EffectType> parseEffectType(std::string_view name) {
    for (size_t i = 0; i < kEffectNames.size(); i++) {
        if (kEffectNames[i] == name) return static_cast<EffectType>(i);
    }
    return std::nullopt;
}

Effect::Effect(EffectType type) : type(type) {
    for (const Field<Effect>* field : effectFields(type)) setInitial(*field, *this);
}

Background::Background() {
    for (const Field<Background>& field : backgroundFields()) setInitial(field, *this);
}

Background::Background(Color color) : Background() {
    this->color = color;
}

bool Fill::operator==(const Fill& other) const {
    return color == other.color && effects == other.effects;
}

bool Effect::operator==(const Effect& other) const {
    if (type != other.type) return false;
    for (const Field<Effect>* field : effectFields(type)) {
        if (!sameValue(*field, *this, other)) return false;
    }
    return true;
}

Style::Style() {
    for (const Field<Style>& field : styleFields()) setInitial(field, *this);
}

Style Style::fromJson(std::string_view json, const std::filesystem::path& source) {
    return readStyle(json, source.string(), source);
}

Style Style::fromFile(const std::filesystem::path& file) {
    return fromJson(readUpTo(kMaxBytes, file.string()), file);
}

}  // namespace gxtext
