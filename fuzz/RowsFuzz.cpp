// Rows of a batch, in both forms: cut into pieces in any way they are the same rows; their names
// are safe and their fields make a style or a mistake with a place.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstring>
#include <string_view>
#include <vector>

#include "Drawing.h"
#include "batch/OutputPattern.h"
#include "batch/RowReader.h"
#include "batch/TitleWork.h"
#include "scene/SceneError.h"

using namespace gxfuzz;

namespace {

struct Read {
    std::vector<std::string> rows;
    bool isStopped = false;  // where no later row could be told
    bool operator==(const Read&) const = default;
};

std::string bytesOf(const gxtext::Row& row) {
    if (row.error) return row.error->place + ": " + row.error->reason;
    return gxtext::TitleRequest{row, "", ""}.toBytes();
}

Read rowsOf(gxtext::RowFormat format, std::string_view bytes, size_t piece,
            const gxtext::RowReader::Sink& look) {
    Read read;
    const gxtext::RowReader::Sink sink = [&](gxtext::Row&& row) {
        require(row.number == read.rows.size() + 1 && !row.id.empty(), "a number and a name");
        look(gxtext::Row(row));
        read.rows.push_back(bytesOf(row));
    };
    const auto reader = gxtext::RowReader::make(format);
    try {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
            reader->feed(bytes.substr(0, piece), sink);
        }
        reader->finish(sink);
    } catch (const gxtext::TextError&) {
        read.isStopped = true;
    }
    return read;
}

void checkRow(const gxtext::Row& row) {
    if (row.error) return;
    const std::string request = bytesOf(row);
    require(bytesOf(gxtext::TitleRequest::fromBytes(request).row) == request, "the row sent");
    const std::string name = gxtext::safeFileName(row.id);
    require(!name.empty() && name.size() < 200 && name.front() != '.' &&
                name.find('/') == std::string::npos && std::strlen(name.c_str()) == name.size(),
            "a safe name");
    try {
        const gxtext::Style style = withSettings(gxtext::Style(), row.settings);
        require(gxtext::Style::fromJson(style.toJson()) == style, "a style that can be written");
    } catch (const gxtext::StyleError& error) {
        require(!error.problems().front().reason.empty(), "a reason");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    const auto format =
        input.ConsumeBool() ? gxtext::RowFormat::kCsv : gxtext::RowFormat::kJsonLines;
    const size_t piece = input.ConsumeIntegralInRange<size_t>(1, 64);
    const std::string bytes = input.ConsumeRemainingBytesAsString();
    const Read whole = rowsOf(format, bytes, bytes.size() + 1, checkRow);
    require(rowsOf(format, bytes, piece, [](gxtext::Row&&) {}) == whole, "the same rows");
    return 0;
}
