// Compression of rows of pixels in as little time as it takes to look at them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace gxtext {

// How many earlier places are tried at each place: one, or four.
enum class RowEffort { kLess, kMore };

// A zlib stream (RFC 1950) of `size` bytes: rows of `period` bytes each, a byte for itself and
// pixels of four. Rendered text is mostly runs of one pixel and rows like the one above, which are
// skipped here word by word, where a general compressor remembers each byte of them. The same bytes
// on every machine.
std::vector<uint8_t> deflateRows(const uint8_t* rows, size_t size, size_t period, RowEffort effort);

}  // namespace gxtext
