#include "Server.h"

#include <thread>

#include "Answer.h"
#include "Page.h"
#include "style/Style.h"
#include "style/StyleSchema.h"

namespace gxstudio {

namespace {

using std::chrono::seconds;

constexpr int kThreads = 64;              // as many connections as are served at a time
constexpr int kRequestSeconds = 10;       // that any part of a request may take to arrive
constexpr int kKeepAliveSeconds = 30;     // between two requests
constexpr int kMostRequests = 1'000'000;  // of a connection
// After the page said good-bye; a page that is loaded anew comes back sooner.
constexpr seconds kFarewell{8};

constexpr char kJson[] = "application/json";
constexpr char kBytes[] = "application/octet-stream";

const httplib::Headers kHeaders = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; "
     "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cache-Control", "no-store"},
};

int64_t now() {
    return std::chrono::duration_cast<seconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Takes the same time wherever the two differ.
bool equalSecrets(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    unsigned difference = 0;
    for (size_t i = 0; i < a.size(); i++) difference |= static_cast<unsigned>(a[i] ^ b[i]);
    return difference == 0;
}

const char* typeOf(std::string_view name) {
    if (name.ends_with(".js")) return "text/javascript; charset=utf-8";
    if (name.ends_with(".css")) return "text/css; charset=utf-8";
    return "text/html; charset=utf-8";
}

// A body that is as long as it says and is not packed: its size is known before it is read.
bool hasPlainBody(const httplib::Request& request) {
    const std::string type = request.get_header_value("Content-Type");
    return request.has_header("Content-Length") && !request.has_header("Transfer-Encoding") &&
           !request.has_header("Content-Encoding") && (type == kJson || type == kBytes);
}

}  // namespace

Server::Server(httplib::Server& http, ServerOptions options, Files& files, Renders& renders)
    : http_(http),
      options_(std::move(options)),
      root_("/" + options_.secret),
      files_(files),
      renders_(renders) {
    configure();
    addPage();
    addCalls();
    addRenders();
}

void Server::run() {
    lastCall_ = now();
    std::thread(&Server::stopWhenIdle, this).detach();
    http_.listen_after_bind();
}

void Server::configure() {
    http_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    http_.set_read_timeout(kRequestSeconds);
    http_.set_write_timeout(kRequestSeconds);
    http_.set_keep_alive_timeout(kKeepAliveSeconds);
    http_.set_keep_alive_max_count(kMostRequests);
    http_.set_payload_max_length(Files::kMaxDropped);
    http_.set_default_headers(kHeaders);
    http_.set_pre_routing_handler([this](const auto& request, auto& response) {
        if (!isAllowed(request, response)) return httplib::Server::HandlerResponse::Handled;
        lastCall_ = now();
        return httplib::Server::HandlerResponse::Unhandled;
    });
    http_.set_exception_handler(
        [](const auto& /*request*/, auto& response, std::exception_ptr thrown) {
            response.status = 400;
            try {
                std::rethrow_exception(std::move(thrown));
            } catch (const Conflict& conflict) {
                response.status = 409;
                response.set_content(jsonText({{"error", conflict.what()}}), kJson);
            } catch (const std::exception& error) {
                response.set_content(jsonText({{"error", error.what()}}), kJson);
            }
        });
}

bool Server::isAllowed(const httplib::Request& request, httplib::Response& response) const {
    const std::string host = "127.0.0.1:" + std::to_string(options_.port);
    const std::string_view path = request.path;
    const size_t end = std::min(path.find('/', 1), path.size());
    const bool knows = end < path.size() && equalSecrets(path.substr(0, end), root_);
    const bool isOwn =
        request.get_header_value_count("Host") == 1 && request.get_header_value("Host") == host &&
        (!request.has_header("Origin") || request.get_header_value("Origin") == "http://" + host);
    const bool isPost = request.method == "POST";
    response.status = 403;
    if (!knows || !isOwn) return false;
    // A page of another origin cannot even ask: browsers say where a POST comes from.
    if (isPost && !request.has_header("Origin")) return false;
    response.status = 405;
    if (!isPost && request.method != "GET") return false;
    response.status = 411;
    if (isPost && !hasPlainBody(request)) return false;
    response.status = 413;
    if (isPost && request.get_header_value<uint64_t>("Content-Length") > Files::kMaxDropped) {
        return false;
    }
    response.status = -1;
    return true;
}

void Server::addPage() {
    for (const BuiltIn& part : kPage) {
        const std::string name = part.name == "index.html" ? "" : std::string(part.name);
        http_.Get(root_ + "/" + name, [part](const auto& /*request*/, auto& response) {
            response.set_content(part.bytes.data(), part.bytes.size(), typeOf(part.name));
        });
    }
}

void Server::addCall(const std::string& name, const Call& call) {
    http_.Post(root_ + "/" + name, [call](const auto& request, auto& response) {
        if (request.body.size() > 2 * gxtext::Style::kMaxBytes) {
            response.status = 413;
            return;
        }
        response.set_content(jsonText(call(Json::parse(request.body))), kJson);
    });
}

void Server::addCalls() {
    addCall("session", [this](const Json&) { return session(); });
    addCall("open", [this](const Json& request) { return openStyle(request); });
    addCall("save", [this](const Json& request) { return saveStyle(request); });
    addCall("watch", [this](const Json& request) { return watch(request); });
    addCall("remember", [this](const Json& request) {
        files_.remember(request.at("name"), request.at("text"));
        return Json::object();
    });
    addCall("close", [this](const Json& request) {
        const std::lock_guard guard(lock_);
        closedPage_ = request.at("page");
        return Json::object();
    });
    http_.Post(root_ + "/drop",
               [this](const auto& request, auto& response) { takeDropped(request, response); });
}

void Server::addRender(const std::string& op) {
    http_.Post(root_ + "/" + op, [this, op](const auto& request, auto& response) {
        Json asked = Json::parse(request.body);
        asked["op"] = op;
        response.set_content(renders_.answer(completed(std::move(asked))), kBytes);
    });
}

void Server::addRenders() {
    for (const char* op : {"render", "file", "check", "import"}) addRender(op);
}

// With what the page need not know.
Server::Json Server::completed(Json request) {
    const std::string name = request.value("name", std::string());
    request["source"] = files_.pathOf(name.empty() ? "untitled.json" : name).string();
    request["files"] = files_.places();
    return request;
}

Server::Json Server::session() {
    Json families = wordsOf(renders_.answer({{"op", "families"}}));
    return {{"schema", Json::parse(gxtext::styleSchema())},
            {"families", families.value("families", Json::array())},
            {"folder", files_.folder().string()},
            {"file", options_.file},
            {"presets", presets()}};
}

Server::Json Server::presets() {
    Json list = Json::array();
    for (const BuiltIn& preset : kPresets) {
        list.push_back({{"name", preset.name}, {"style", Json::parse(preset.bytes)}});
    }
    return list;
}

Server::Json Server::openStyle(const Json& request) {
    const std::string name = request.at("name");
    const std::string text = files_.open(name);
    return {{"name", name},
            {"text", text},
            {"version", files_.versionOf(name)},
            {"remembered", files_.remembered(name)}};
}

Server::Json Server::saveStyle(const Json& request) {
    const std::string name = request.at("name");
    Json checked = wordsOf(renders_.answer(
        completed({{"op", "check"}, {"style", request.at("style")}, {"name", name}})));
    if (!checked.contains("text")) return checked;
    const std::string text = checked["text"];
    const std::string version = files_.save(name, text, request.at("version"));
    files_.remember(name, "");
    return {{"name", name}, {"version", version}, {"text", text}};
}

Server::Json Server::watch(const Json& request) {
    const std::string name = request.value("name", std::string());
    {
        // What a page asked before it was closed may come after its good-bye.
        const std::lock_guard guard(lock_);
        if (request.value("page", std::string()) != closedPage_) closedPage_.clear();
    }
    return {{"version", name.empty() ? "" : files_.versionOf(name)}, {"styles", files_.styles()}};
}

void Server::takeDropped(const httplib::Request& request, httplib::Response& response) {
    const std::string name = files_.keep(request.get_param_value("name"), request.body);
    Json words = {{"name", name}};
    if (request.get_param_value("kind") == "font") {
        words = wordsOf(renders_.answer({{"op", "font"}, {"file", files_.places().at(name)}}));
        words["name"] = name;
    }
    response.set_content(jsonText(words), kJson);
}

bool Server::isClosed() {
    const std::lock_guard guard(lock_);
    return !closedPage_.empty();
}

void Server::stopWhenIdle() {
    while (true) {
        std::this_thread::sleep_for(seconds(1));
        const seconds limit = isClosed() ? std::min(kFarewell, options_.idle) : options_.idle;
        if (now() - lastCall_ > limit.count()) std::_Exit(EXIT_SUCCESS);
    }
}

}  // namespace gxstudio
