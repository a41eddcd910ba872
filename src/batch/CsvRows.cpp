#include "batch/CsvRows.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#include "batch/RowFields.h"
#include "scene/SceneError.h"
#include "style/FieldTable.h"

namespace gxtext {

namespace {

using nlohmann::ordered_json;

// Text is kept as it is, with the spaces at its ends.
int isNoSpace(unsigned char /*c*/) {
    return 0;
}

// An open quote would take in all the rest.
void* growCell(void* cell, size_t size) {
    return size > 2 * RowReader::kMaxRowBytes ? nullptr : std::realloc(cell, size);
}

// Whether digits in the column are text as well.
bool isTextColumn(const std::string& name) {
    if (name == "id" || name == "style") return true;
    const auto& fields = styleFields();
    return std::any_of(fields.begin(), fields.end(), [&](const Field<Style>& field) {
        return field.name == name && typeOf(field) == FieldType::kString;
    });
}

ordered_json cellValue(const std::string& column, const std::string& cell) {
    if (isTextColumn(column)) return cell;
    ordered_json value = ordered_json::parse(cell, nullptr, false);
    return value.is_discarded() ? ordered_json(cell) : value;
}

}  // namespace

CsvRows::CsvRows() {
    if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0) throw std::bad_alloc();
    csv_set_space_func(&parser_, isNoSpace);
    csv_set_realloc_func(&parser_, growCell);
    csv_set_blk_size(&parser_, 4096);
}

CsvRows::~CsvRows() {
    csv_free(&parser_);
}

void CsvRows::feed(std::string_view bytes, const Sink& sink) {
    sink_ = &sink;
    if (csv_parse(&parser_, bytes.data(), bytes.size(), takeCell, takeEnd, this) != bytes.size()) {
        rethrow();
        if (csv_error(&parser_) == CSV_EPARSE) fail("a quote inside a cell is not doubled");
        fail("longer than " + std::to_string(kMaxRowBytes) +
             " bytes, or a quote that is never closed");
    }
    rethrow();
}

void CsvRows::finish(const Sink& sink) {
    sink_ = &sink;
    const bool isWhole = csv_fini(&parser_, takeCell, takeEnd, this) == 0;
    rethrow();
    if (!isWhole) fail("a quote that is never closed");
}

void CsvRows::takeCell(void* cell, size_t size, void* self) {
    auto& rows = *static_cast<CsvRows*>(self);
    rows.cellBytes_ += size;
    const bool fits = rows.cellBytes_ <= kMaxRowBytes && rows.cells_.size() <= 4096;
    if (fits) rows.cells_.emplace_back(static_cast<const char*>(cell), size);
}

void CsvRows::takeEnd(int /*terminator*/, void* self) {
    auto& rows = *static_cast<CsvRows*>(self);
    if (rows.thrown_) return;
    try {
        rows.endRow();
    } catch (...) {
        rows.thrown_ = std::current_exception();
    }
}

void CsvRows::endRow() {
    if (header_.empty()) {
        readHeader();
    } else {
        (*sink_)(readRow());
    }
    cells_.clear();
    cellBytes_ = 0;
}

void CsvRows::readHeader() {
    std::vector<std::string> names = std::move(cells_);
    if (names.front().starts_with(kByteOrderMark)) names.front().erase(0, kByteOrderMark.size());
    for (auto name = names.begin(); name != names.end(); ++name) {
        name->erase(0, name->find_first_not_of(" \t"));
        name->erase(name->find_last_not_of(" \t") + 1);
        if (name->empty()) {
            fail("column " + std::to_string(name - names.begin() + 1) + " has no name");
        }
        if (!isUtf8(*name)) fail("not valid UTF-8");
        if (std::find(names.begin(), name, *name) != name) fail(*name + " is given twice");
    }
    header_ = std::move(names);
}

Row CsvRows::readRow() {
    Row row = emptyRow(++rows_);
    if (cellBytes_ > kMaxRowBytes) {
        row.error = {"$", "longer than " + std::to_string(kMaxRowBytes) + " bytes"};
    } else if (cells_.size() != header_.size()) {
        row.error = {"$", std::to_string(cells_.size()) + " cells; the header has " +
                              std::to_string(header_.size())};
    }
    for (size_t i = 0; i < header_.size() && !row.error; i++) {
        if (cells_[i].empty()) continue;
        if (isUtf8(cells_[i])) {
            addField(row, header_[i], cellValue(header_[i], cells_[i]));
        } else {
            row.error = {"$." + header_[i], "not valid UTF-8"};
        }
    }
    return row;
}

void CsvRows::fail(const std::string& reason) const {
    throw TextError(header_.empty() ? "the header" : "row " + std::to_string(rows_ + 1), reason);
}

void CsvRows::rethrow() {
    if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
}

}  // namespace gxtext
