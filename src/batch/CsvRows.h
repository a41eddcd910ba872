// Rows as comma-separated values.
#pragma once

#include <csv.h>

#include <string>
#include <vector>

#include "batch/RowReader.h"

namespace gxtext {

class CsvRows : public RowReader {
public:
    CsvRows();
    ~CsvRows() override;

    void feed(std::string_view bytes, const Sink& sink) override;
    void finish(const Sink& sink) override;

private:
    // The parser's calls, `self` being a CsvRows.
    static void takeCell(void* cell, size_t size, void* self);
    static void takeEnd(int terminator, void* self);

    void endRow();
    void readHeader();
    Row readRow();
    [[noreturn]] void fail(const std::string& reason) const;
    // Throws what a call could not throw through the parser.
    void rethrow();

    csv_parser parser_{};
    std::vector<std::string> header_;
    std::vector<std::string> cells_;
    size_t cellBytes_ = 0;
    uint64_t rows_ = 0;
    const Sink* sink_ = nullptr;  // during a call of the parser
    std::exception_ptr thrown_;
};

}  // namespace gxtext
