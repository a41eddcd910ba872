// Who may ask the studio.
#pragma once

#include <httplib.h>

#include <string>
#include <string_view>

namespace gxstudio {

// Lets in who knows the secret, calls the server by its number and comes from its own page, with a
// body whose size is known before it is read.
class Gate {
public:
    // The secret is the first part of every address. Bodies have at most `maxBytes`.
    Gate(const std::string& secret, int port, size_t maxBytes);

    // "/SECRET"
    const std::string& root() const { return root_; }
    // The status with which the request is turned away; 0 for one that is let in.
    int refusal(const httplib::Request& request) const;

private:
    bool knowsSecret(std::string_view path) const;
    bool isFromOwnPage(const httplib::Request& request) const;

    const std::string root_;
    const std::string host_;  // "127.0.0.1:PORT"
    const size_t maxBytes_;
};

}  // namespace gxstudio
