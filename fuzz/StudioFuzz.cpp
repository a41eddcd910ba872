// Requests to the studio: who is let in, and what a call answers, with workers in this process and
// fonts of our own. The first byte chooses the call, or a request's head.
#include <fuzzer/FuzzedDataProvider.h>

#include <filesystem>
#include <optional>
#include <vector>

#include "Answer.h"
#include "Calls.h"
#include "Drawing.h"
#include "FontFolder.h"
#include "Gate.h"
#include "LayeredPicture.h"
#include "Work.h"
#include "scene/FileIo.h"

using namespace gxfuzz;
using gxstudio::Call;
using gxstudio::Calls;
using gxstudio::Reply;
using Json = Calls::Json;

namespace {

namespace fs = std::filesystem;

constexpr char kSecret[] = "5eed";
constexpr char kOwnHost[] = "127.0.0.1:8080";
constexpr char kOwnOrigin[] = "http://127.0.0.1:8080";
constexpr int kRunsPerStudio = 500;  // so that what was dropped and saved does not pile up

// A studio in folders of its own.
class Studio {
public:
    Studio()
        : folder_(freshFolder()),
          files_(folder_ / "styles", folder_ / "session"),
          work_(gxtext::FontSource::folder(fontFolder()), {}),
          calls_(
              files_, [this](const Json& request) { return answer(request); }, Json::object()) {}
    Studio(const Studio&) = delete;
    Studio& operator=(const Studio&) = delete;
    ~Studio() { fs::remove_all(folder_); }

    Calls& calls() { return calls_; }

private:
    static fs::path freshFolder() {
        const fs::path folder = fontFolder() / "studio";
        fs::remove_all(folder);
        for (const char* name : {"styles", "session"}) fs::create_directories(folder / name);
        return folder;
    }

    std::string answer(Json request) {
        const std::string op = request.at("op");
        if (op == "layers") return layers(request.at("file"));
        if (op == "render" || op == "file") {
            // Large pictures take long and show nothing that small ones do not.
            request["fit"] = {40, 40};
            request.erase("scale");
        }
        return work_.answer(gxstudio::jsonText(request));
    }

    // The input is not the picture, but what its reader would print.
    static std::string layers(const std::string& file) {
        try {
            const std::string printed = gxtext::readFile(file, gxstudio::Files::kMaxDropped);
            return gxstudio::packAnswer({{"layers", gxstudio::layersOf(printed)}});
        } catch (const gxtext::Error& error) {
            return gxstudio::packAnswer(gxstudio::problemWords("$", error.what()));
        }
    }

    const fs::path folder_;
    gxstudio::Files files_;
    gxstudio::Work work_;
    Calls calls_;
};

// Whoever is let in knows the secret and is the page itself.
void knock(FuzzedDataProvider& data) {
    httplib::Request request;
    request.method = data.PickValueInArray({"GET", "POST", "PUT", "OPTIONS"});
    request.path = data.ConsumeBool() ? "/5eed/render" : data.ConsumeRandomLengthString(20);
    const char* const names[] = {"Host",           "Origin",           "Content-Type",
                                 "Content-Length", "Content-Encoding", "Transfer-Encoding"};
    const std::string values[] = {kOwnHost, kOwnOrigin, "application/json", "12"};
    while (data.remaining_bytes() > 1) {
        const char* name = data.PickValueInArray(names);
        request.headers.emplace(name, data.ConsumeBool() ? data.PickValueInArray(values)
                                                         : data.ConsumeRandomLengthString(20));
    }
    const gxstudio::Gate gate(kSecret, 8080, 1000);
    if (gate.refusal(request) != 0) return;
    require(request.path.starts_with("/5eed/"), "the secret");
    require(request.get_header_value("Host") == kOwnHost, "the host");
    require(request.method == "GET" || request.get_header_value("Origin") == kOwnOrigin,
            "the page's own origin");
}

void ask(Calls& calls, FuzzedDataProvider& data) {
    static const std::vector<std::string> names = calls.names();
    Call call;
    call.name = names[data.ConsumeIntegralInRange<size_t>(0, names.size() - 1)];
    if (call.name == "font" || call.name == "picture") {
        call.file = data.ConsumeRandomLengthString(20);
    }
    call.body = data.ConsumeRemainingBytesAsString();
    const Reply reply = calls.answer(call);
    if (reply.type == "application/json") {
        const Json words = Json::parse(reply.body);
        require(reply.status == 200 || !words.at("error").get<std::string>().empty(), "a reason");
    } else {
        const Json words = gxstudio::wordsOf(reply.body);
        require(
            !words.contains("width") || words["width"].get<int>() * words["height"].get<int>() > 0,
            "a picture");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static std::optional<Studio> studio;
    static int runs = 0;
    if (runs++ % kRunsPerStudio == 0) studio.emplace();
    FuzzedDataProvider data(bytes, size);
    if (data.ConsumeIntegralInRange(0, 7) == 0) {
        knock(data);
    } else {
        ask(studio->calls(), data);
    }
    return 0;
}
