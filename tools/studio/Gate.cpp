#include "Gate.h"

#include <algorithm>

namespace gxstudio {

namespace {

// Takes the same time wherever the two differ.
bool equalSecrets(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    unsigned difference = 0;
    for (size_t i = 0; i < a.size(); i++) difference |= static_cast<unsigned>(a[i] ^ b[i]);
    return difference == 0;
}

// A body that is as long as it says and is not packed.
bool hasPlainBody(const httplib::Request& request) {
    const std::string type = request.get_header_value("Content-Type");
    return request.has_header("Content-Length") && !request.has_header("Transfer-Encoding") &&
           !request.has_header("Content-Encoding") &&
           (type == "application/json" || type == "application/octet-stream");
}

}  // namespace

Gate::Gate(const std::string& secret, int port, size_t maxBytes)
    : root_("/" + secret), host_("127.0.0.1:" + std::to_string(port)), maxBytes_(maxBytes) {}

int Gate::refusal(const httplib::Request& request) const {
    const bool isPost = request.method == "POST";
    if (!knowsSecret(request.path) || !isFromOwnPage(request)) return 403;
    if (!isPost && request.method != "GET") return 405;
    if (isPost && !hasPlainBody(request)) return 411;
    if (isPost && request.get_header_value<uint64_t>("Content-Length") > maxBytes_) return 413;
    return 0;
}

bool Gate::knowsSecret(std::string_view path) const {
    const size_t end = std::min(path.find('/', 1), path.size());
    return end < path.size() && equalSecrets(path.substr(0, end), root_);
}

bool Gate::isFromOwnPage(const httplib::Request& request) const {
    if (request.get_header_value_count("Host") != 1 || request.get_header_value("Host") != host_) {
        return false;
    }
    // A page of another origin cannot even ask: browsers say where a POST comes from.
    if (!request.has_header("Origin")) return request.method != "POST";
    return request.get_header_value_count("Origin") == 1 &&
           request.get_header_value("Origin") == "http://" + host_;
}

}  // namespace gxstudio
