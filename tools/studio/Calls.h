// What the page may ask of the studio, and what it is told.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "Files.h"

namespace gxstudio {

// A request as it came; nothing of it is checked.
struct Call {
    std::string name;  // "render"
    std::string body;  // a JSON object, or a dropped file's bytes
    std::string file;  // the dropped file's name
};

struct Reply {
    int status = 200;  // of HTTP
    std::string type;  // of the body: "application/json"
    std::string body;
};

// Every call of the page, whatever carries it. Safe from any thread.
class Calls {
public:
    using Json = nlohmann::ordered_json;
    // A worker's answer (Answer.h) to a request (Work.h).
    using Worker = std::function<std::string(const Json& request)>;

    // `session` is what a page is told as it begins, but for the families of fonts.
    Calls(Files& files, Worker worker, Json session);

    std::vector<std::string> names() const;
    // Whatever goes wrong is the reply: {"error"} for a request that is none, {"problems"} for what
    // a person can mend.
    Reply answer(const Call& call);
    // Whether the last page has said good-bye, and no other has asked since.
    bool isClosed();

private:
    using Handler = std::function<Reply(const Call& call)>;
    using JsonHandler = std::function<Json(const Json& request)>;

    void add(const std::string& name, const JsonHandler& handler);
    void addRender(const std::string& name);
    Json session();
    Json open(const Json& request);
    Json save(const Json& request);
    Json watch(const Json& request);
    Json remember(const Json& request);
    Json close(const Json& request);
    Json keepFont(const Call& call);
    Json readLayers(const Call& call);
    Json completed(Json request) const;

    Files& files_;
    const Worker worker_;
    const Json session_;
    std::map<std::string, Handler> handlers_;
    std::mutex lock_;         // guards what follows
    std::string closedPage_;  // that said good-bye last
};

}  // namespace gxstudio
