#include "Server.h"

#include <thread>

#include "Page.h"

namespace gxstudio {

namespace {

using std::chrono::seconds;

constexpr int kThreads = 64;              // as many connections as are served at a time
constexpr int kRequestSeconds = 10;       // that any part of a request may take to arrive
constexpr int kKeepAliveSeconds = 30;     // between two requests
constexpr int kMostRequests = 1'000'000;  // of a connection
// After the page said good-bye; a page that is loaded anew comes back sooner.
constexpr seconds kFarewell{8};

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

const char* typeOf(std::string_view name) {
    if (name.ends_with(".js")) return "text/javascript; charset=utf-8";
    if (name.ends_with(".css")) return "text/css; charset=utf-8";
    return "text/html; charset=utf-8";
}

}  // namespace

Server::Server(httplib::Server& http, const Gate& gate, Calls& calls, seconds idle)
    : http_(http), gate_(gate), calls_(calls), idle_(idle) {
    configure();
    addPage();
    addCalls();
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
        const int refusal = gate_.refusal(request);
        if (refusal != 0) {
            response.status = refusal;
            return httplib::Server::HandlerResponse::Handled;
        }
        lastCall_ = now();
        return httplib::Server::HandlerResponse::Unhandled;
    });
}

void Server::addPage() {
    for (const BuiltIn& part : kPage) {
        const std::string name = part.name == "index.html" ? "" : std::string(part.name);
        http_.Get(gate_.root() + "/" + name, [part](const auto& /*request*/, auto& response) {
            response.set_content(part.bytes.data(), part.bytes.size(), typeOf(part.name));
        });
    }
}

void Server::addCalls() {
    for (const std::string& name : calls_.names()) {
        http_.Post(gate_.root() + "/" + name, [this, name](const auto& request, auto& response) {
            Reply reply = calls_.answer({name, request.body, request.get_param_value("name")});
            response.status = reply.status;
            response.set_content(std::move(reply.body), reply.type);
        });
    }
}

void Server::stopWhenIdle() {
    while (true) {
        std::this_thread::sleep_for(seconds(1));
        const seconds limit = calls_.isClosed() ? std::min(kFarewell, idle_) : idle_;
        if (now() - lastCall_ > limit.count()) std::_Exit(EXIT_SUCCESS);
    }
}

}  // namespace gxstudio
