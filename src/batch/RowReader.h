// Rows out of a stream of bytes.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "batch/Row.h"

namespace gxtext {

enum class RowFormat { kJsonLines, kCsv };

// Takes the bytes in pieces of any size, so that the end of the stream need not be known. Memory is
// that of one row.
//
// JSON lines: an object a line; empty lines do not count. CSV: RFC 4180 with a header; an empty
// cell leaves its field out; a cell is JSON, or stands for itself as a string when it is not, and
// is a string where the field is one.
//
// "id" and "style" are the row's own, every other name is a path in a style. What is wrong with a
// row becomes its error.
class RowReader {
public:
    using Sink = std::function<void(Row&&)>;

    static constexpr size_t kMaxRowBytes = Style::kMaxBytes;

    static std::unique_ptr<RowReader> make(RowFormat format);

    RowReader() = default;
    RowReader(const RowReader&) = delete;
    RowReader& operator=(const RowReader&) = delete;
    virtual ~RowReader() = default;

    // Hands over the rows that are complete. Throws TextError where no later row could be told
    // from this one: a header that is wrong, a quote that is never closed.
    virtual void feed(std::string_view bytes, const Sink& sink) = 0;
    // The stream is over; throws like feed().
    virtual void finish(const Sink& sink) = 0;
};

}  // namespace gxtext
