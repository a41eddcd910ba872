#include "Answer.h"

#include <cstdint>

namespace gxstudio {

namespace {

using nlohmann::ordered_json;

constexpr size_t kLengthBytes = 4;

size_t wordsSize(const std::string& answer) {
    size_t size = 0;
    for (size_t i = kLengthBytes; i-- > 0;) size = size << 8 | static_cast<uint8_t>(answer.at(i));
    return size;
}

}  // namespace

std::string jsonText(const ordered_json& value) {
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

std::string packAnswer(const ordered_json& words, std::string_view picture) {
    const std::string text = jsonText(words);
    std::string answer;
    answer.reserve(kLengthBytes + text.size() + picture.size());
    for (size_t i = 0; i < kLengthBytes; i++) {
        answer += static_cast<char>(text.size() >> 8 * i & 0xFF);
    }
    return answer.append(text).append(picture);
}

ordered_json wordsOf(const std::string& answer) {
    return ordered_json::parse(answer.substr(kLengthBytes, wordsSize(answer)));
}

std::string_view pictureOf(const std::string& answer) {
    return std::string_view(answer).substr(kLengthBytes + wordsSize(answer));
}

ordered_json problemWords(const std::string& path, const std::string& reason,
                          const std::string& allowed) {
    return {{"problems", {{{"path", path}, {"reason", reason}, {"allowed", allowed}}}}};
}

}  // namespace gxstudio
