// Rows as JSON lines.
#pragma once

#include <string>

#include "batch/RowReader.h"

namespace gxtext {

class JsonRows : public RowReader {
public:
    void feed(std::string_view bytes, const Sink& sink) override;
    void finish(const Sink& sink) override;

private:
    void append(std::string_view bytes);
    void endLine(const Sink& sink);

    std::string line_;  // what there is of it, up to the longest that is read
    bool isTooLong_ = false;
    uint64_t rows_ = 0;
};

}  // namespace gxtext
