#include "Calls.h"

#include "Answer.h"
#include "style/Style.h"

namespace gxstudio {

namespace {

using Json = Calls::Json;

constexpr size_t kMaxJsonBytes = 2 * gxtext::Style::kMaxBytes;
constexpr char kJson[] = "application/json";
constexpr char kBytes[] = "application/octet-stream";

Reply jsonReply(int status, const Json& words) {
    return {status, kJson, jsonText(words)};
}

Reply errorReply(int status, const std::string& reason) {
    return jsonReply(status, {{"error", reason}});
}

Json parsed(const Call& call) {
    Json request = Json::parse(call.body);
    if (!request.is_object()) throw gxtext::Error("a request is a JSON object");
    return request;
}

}  // namespace

Calls::Calls(Files& files, Worker worker, Json session)
    : files_(files), worker_(std::move(worker)), session_(std::move(session)) {
    add("session", [this](const Json&) { return this->session(); });
    add("open", [this](const Json& request) { return open(request); });
    add("save", [this](const Json& request) { return save(request); });
    add("watch", [this](const Json& request) { return watch(request); });
    add("remember", [this](const Json& request) { return remember(request); });
    add("close", [this](const Json& request) { return close(request); });
    for (const char* name : {"render", "file", "check", "import"}) addRender(name);
    handlers_["font"] = [this](const Call& call) { return jsonReply(200, keepFont(call)); };
    handlers_["layers"] = [this](const Call& call) { return jsonReply(200, readLayers(call)); };
    handlers_["picture"] = [this](const Call& call) {
        return jsonReply(200, {{"name", files_.keep(call.file, call.body)}});
    };
}

std::vector<std::string> Calls::names() const {
    std::vector<std::string> names;
    for (const auto& [name, handler] : handlers_) names.push_back(name);
    return names;
}

Reply Calls::answer(const Call& call) {
    const auto handler = handlers_.find(call.name);
    if (handler == handlers_.end()) return errorReply(404, "no such call");
    try {
        return handler->second(call);
    } catch (const Conflict& conflict) {
        return errorReply(409, conflict.what());
    } catch (const std::exception& error) {
        return errorReply(400, error.what());
    }
}

void Calls::add(const std::string& name, const JsonHandler& handler) {
    handlers_[name] = [handler](const Call& call) {
        if (call.body.size() > kMaxJsonBytes) return errorReply(413, "too long");
        return jsonReply(200, handler(parsed(call)));
    };
}

// The worker's answer as it is.
void Calls::addRender(const std::string& name) {
    handlers_[name] = [this, name](const Call& call) -> Reply {
        Json request = parsed(call);
        request["op"] = name;
        return {200, kBytes, worker_(completed(std::move(request)))};
    };
}

// With what the page need not know.
Json Calls::completed(Json request) const {
    const std::string name = request.value("name", std::string());
    request["source"] = files_.pathOf(name.empty() ? "untitled.json" : name).string();
    request["files"] = files_.places();
    return request;
}

Json Calls::session() {
    Json answer = session_;
    Json families = wordsOf(worker_({{"op", "families"}}));
    answer["families"] = families.value("families", Json::array());
    return answer;
}

Json Calls::open(const Json& request) {
    const std::string name = request.at("name");
    const std::string text = files_.open(name);
    return {{"name", name},
            {"text", text},
            {"version", files_.versionOf(name)},
            {"remembered", files_.remembered(name)}};
}

Json Calls::save(const Json& request) {
    const std::string name = request.at("name");
    Json checked = wordsOf(
        worker_(completed({{"op", "check"}, {"style", request.at("style")}, {"name", name}})));
    if (!checked.contains("text")) return checked;
    const std::string text = checked["text"];
    const std::string version = files_.save(name, text, request.at("version"));
    files_.remember(name, "");
    return {{"name", name}, {"version", version}, {"text", text}};
}

Json Calls::watch(const Json& request) {
    const std::string name = request.value("name", std::string());
    {
        // What a page asked before it was closed may come after its good-bye.
        const std::lock_guard guard(lock_);
        if (request.value("page", std::string()) != closedPage_) closedPage_.clear();
    }
    return {{"version", name.empty() ? "" : files_.versionOf(name)}, {"styles", files_.styles()}};
}

Json Calls::remember(const Json& request) {
    files_.remember(request.at("name"), request.at("text"));
    return Json::object();
}

Json Calls::close(const Json& request) {
    const std::lock_guard guard(lock_);
    closedPage_ = request.at("page");
    return Json::object();
}

bool Calls::isClosed() {
    const std::lock_guard guard(lock_);
    return !closedPage_.empty();
}

Json Calls::keepFont(const Call& call) {
    const std::string name = files_.keep(call.file, call.body);
    Json words = wordsOf(worker_({{"op", "font"}, {"file", files_.places().at(name)}}));
    words["name"] = name;
    return words;
}

Json Calls::readLayers(const Call& call) {
    const Files::Passing file = files_.pass(call.body);
    return wordsOf(worker_({{"op", "layers"}, {"file", file.path().string()}}));
}

}  // namespace gxstudio
