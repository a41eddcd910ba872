// Whole files in and out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace gxtext {

// All bytes of a regular file; of nothing else, since a pipe may never give any. Throws FileError
// when it cannot be read or is longer than `limit`.
std::string readFile(const std::string& file, size_t limit);

enum class Flush { kNow, kLater };

// Replaces the file as a whole or not at all: a full disk, a signal or a crash leaves what was
// there, and nothing beside it. The bytes are on the disk before the new file takes the place of
// the old one, whose permissions it gets, and its owner as far as the caller may give files away;
// another hard link to the old file keeps the old bytes. Symbolic links are followed. Where the
// system knows no files without a name there is a file ".gxtext-*" while it is written: signals to
// the calling thread wait then, and only what cannot wait (SIGKILL, a crash) leaves it behind.
//
// What cannot be replaced is written to: devices, pipes, and whatever /dev/stdout and the like
// stand for. Throws FileError when not everything could be written, and for an old file without
// permission to write.
//
// With Flush::kLater the system brings the bytes to the disk when it likes: no crash of the process
// shows, one of the machine may leave an empty file.
void writeFile(const std::string& file, std::string_view bytes, Flush flush = Flush::kNow);

// Makes the folders on the way to the file that are not there. Throws FileError.
void makeFolderOf(const std::string& file);

// readFile and writeFile through a descriptor that is open; `name` is for messages. One that does
// not block is waited for.
std::string readDescriptor(int descriptor, const std::string& name, size_t limit);
void writeDescriptor(int descriptor, const std::string& name, std::string_view bytes);

// Whether the path stands for a descriptor of the process, as /dev/stdin and /dev/fd/3 do.
bool isDescriptorPath(const std::string& file);

}  // namespace gxtext
