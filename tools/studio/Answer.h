// What a worker says to a request, as it goes to the page.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace gxstudio {

// Four bytes with the length of the words, little-endian; the words, a JSON object; the picture's
// bytes to the end. A mistake is {"problems": [{"path", "reason", "allowed"}]}.
std::string packAnswer(const nlohmann::ordered_json& words, std::string_view picture = {});
// The words of an answer that is whole.
nlohmann::ordered_json wordsOf(const std::string& answer);
// The bytes behind the words.
std::string_view pictureOf(const std::string& answer);

// {"problems": [...]} of one.
nlohmann::ordered_json problemWords(const std::string& path, const std::string& reason,
                                    const std::string& allowed = {});
// UTF-8 whatever the strings hold.
std::string jsonText(const nlohmann::ordered_json& value);

}  // namespace gxstudio
