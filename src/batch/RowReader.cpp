#include "batch/RowReader.h"

#include "batch/CsvRows.h"
#include "batch/JsonRows.h"

namespace gxtext {

std::unique_ptr<RowReader> RowReader::make(RowFormat format) {
    if (format == RowFormat::kCsv) return std::make_unique<CsvRows>();
    return std::make_unique<JsonRows>();
}

}  // namespace gxtext
