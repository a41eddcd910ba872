// The studio's pages and calls over HTTP, on this machine alone.
#pragma once

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>

#include "Files.h"
#include "Renders.h"

namespace gxstudio {

struct ServerOptions {
    std::string secret;  // the first part of every address
    int port = 0;
    std::string file;  // name of the style that is open at the start; may be empty
    std::chrono::seconds idle{600};
};

// Answers who knows the secret, calls the server by its number and comes from its own page. Every
// request has a size and a time that it may take.
class Server {
public:
    // `http` is bound already.
    Server(httplib::Server& http, ServerOptions options, Files& files, Renders& renders);

    // Serves until the page has been closed, or silent, for a while.
    void run();

private:
    using Json = nlohmann::ordered_json;
    using Call = std::function<Json(const Json& request)>;

    void configure();
    void addPage();
    void addCalls();
    void addRenders();
    // POST of JSON with an answer in JSON.
    void addCall(const std::string& name, const Call& call);
    // POST of JSON that a worker answers.
    void addRender(const std::string& op);
    bool isAllowed(const httplib::Request& request, httplib::Response& response) const;
    Json session();
    Json openStyle(const Json& request);
    Json saveStyle(const Json& request);
    Json watch(const Json& request);
    bool isClosed();
    Json presets();
    void takeDropped(const httplib::Request& request, httplib::Response& response);
    Json completed(Json request);
    void stopWhenIdle();

    httplib::Server& http_;
    const ServerOptions options_;
    const std::string root_;  // "/SECRET"
    Files& files_;
    Renders& renders_;
    std::atomic<int64_t> lastCall_{0};  // seconds of the steady clock
    std::mutex lock_;                   // guards what follows
    std::string closedPage_;            // that said good-bye last, while no other has asked since
};

}  // namespace gxstudio
