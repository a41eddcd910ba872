// A stdio file with the library's error codes, and the path operations that go with it.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>

#include "GxExport.h"

namespace GxFontEffect {

class FileImpl;
class GxString;

// Built in two steps; a File whose Construct failed is unconstructed and may be constructed again.
// On an unconstructed or closed File every operation records code 8 and gives the value named
// below. Failures are logged under the tag "GX_File". Not locked.
class GXTEXT_API File {
public:
    File();
    // Closes as Close does.
    virtual ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // Opens with fopen's modes. A mode with 'w' or 'a' makes closing flush the file to the disk as
    // well. With `keepOpen` neither Close nor the destructor touches the stream: it is the caller's
    // to close through GetFilePointer(). Code 4 when already constructed, 7 for a null path or mode
    // or an unconstructed path, 11 when the file cannot be opened (an empty path included).
    bool Construct(const GxString* path, const char* mode, bool keepOpen = false);
    bool Construct(const char* path, const char* mode);

    // fread and fwrite: the items transferred, 0 when unconstructed. Null memory for a transfer of
    // more than nothing, or a size that does not fit, is code 7 and 0.
    size_t Read(void* data, size_t size, size_t count);
    size_t Write(const void* data, size_t size, size_t count);

    // fseek, ftell, feof, ferror, fileno: -1 when unconstructed.
    int Seek(long offset, int origin);
    long Tell();
    int Eof();
    int Error();
    int GetFileDescriptor();
    // Null when unconstructed. Owned by the File unless it keeps the stream open.
    FILE* GetFilePointer();

    // Flushes and closes; nothing with keepOpen or when closed before. False with code 1 when data
    // could not be written out; the stream is closed all the same.
    bool Close();

    // access(), unlink(), rename() on UTF-8 paths: 0, or -1 with errno. A null or unconstructed
    // path is code 7 and -1.
    static int IsAccessible(const GxString* path, int mode);
    static int IsAccessible(const char* path, int mode);
    static int Unlink(const GxString* path);
    static int Unlink(const char* path);
    static int Rename(const GxString* oldPath, const GxString* newPath);
    static int Rename(const char* oldPath, const char* newPath);

private:
    FILE* Stream(int site) const;

    std::unique_ptr<FileImpl> impl_;
};

}  // namespace GxFontEffect
