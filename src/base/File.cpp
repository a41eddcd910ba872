#include "base/File.h"

#include <android/log.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "base/NativeError.h"
#include "base/Utf8Text.h"

namespace GxFontEffect {

namespace {

constexpr const char* kTag = "GX_File";

// One number per failing check; never renumber.
enum Site : int {
    kSiteConstructAgain = 1,
    kSiteConstructNull = 2,
    kSiteConstructPath = 3,
    kSiteConstructOpen = 4,
    kSiteConstructMemory = 5,
    kSiteRead = 6,
    kSiteReadArgument = 7,
    kSiteWrite = 8,
    kSiteWriteArgument = 9,
    kSiteSeek = 10,
    kSiteTell = 11,
    kSiteEof = 12,
    kSiteError = 13,
    kSiteFilePointer = 14,
    kSiteFileDescriptor = 15,
    kSiteClose = 16,
    kSiteCloseFlush = 17,
    kSiteIsAccessible = 18,
    kSiteUnlink = 19,
    kSiteRename = 20,
};

bool Fail(GxErrorCode code, Site site) {
    return ReportNativeError(kTag, code, site);
}

// What a transfer may be asked for: nothing at all, or a size that fits.
bool IsTransfer(const void* data, size_t size, size_t count) {
    if (size == 0 || count == 0) return true;
    return data && size <= SIZE_MAX / count;
}

int AccessPath(const Utf8Text& path, int mode) {
    if (path.size() >= 1) return access(path.get(), mode);
    __android_log_print(ANDROID_LOG_ERROR, kTag, "IsAccessible() - pathSize < 0");
    Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteIsAccessible);
    return -1;
}

int UnlinkPath(const Utf8Text& path) {
    if (path.size() >= 1) return unlink(path.get());
    __android_log_print(ANDROID_LOG_ERROR, kTag, "Unlink() - pathSize < 0");
    Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteUnlink);
    return -1;
}

int RenamePath(const Utf8Text& oldPath, const Utf8Text& newPath) {
    if (oldPath.size() >= 1 && newPath.size() >= 1) return rename(oldPath.get(), newPath.get());
    __android_log_print(ANDROID_LOG_ERROR, kTag, "Rename() - pathSize < 0 : old %d, new %d",
                        oldPath.size(), newPath.size());
    Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteRename);
    return -1;
}

}  // namespace

class FileImpl {
public:
    FileImpl(FILE* file, bool sync, bool keep) : stream(file), syncOnClose(sync), keepOpen(keep) {}
    FileImpl(const FileImpl&) = delete;
    FileImpl& operator=(const FileImpl&) = delete;
    ~FileImpl() { Close(); }

    bool Close() {
        if (keepOpen || !stream) return true;
        const bool flushed = fflush(stream) == 0;
        const bool synced = !syncOnClose || Sync();
        return fclose(std::exchange(stream, nullptr)) == 0 && flushed && synced;
    }

    FILE* stream;
    bool syncOnClose;
    bool keepOpen;

private:
    bool Sync() {
        // Pipes and terminals, which have no disk behind them, answer EINVAL or EROFS.
        return fsync(fileno(stream)) == 0 || errno == EINVAL || errno == EROFS;
    }
};

namespace {

// The opened state record, or null with the failure reported.
std::unique_ptr<FileImpl> OpenFile(const Utf8Text& path, const char* mode, bool keepOpen) {
    if (path.size() < 1) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "OpenFile() - pathSize < 0");
        Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructPath);
        return nullptr;
    }
    FILE* stream = fopen(path.get(), mode);
    if (!stream) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "OpenFile - Fail to open file. errno = %d",
                            errno);
        Fail(GXE_ERROR_FILE_OPEN, kSiteConstructOpen);
        return nullptr;
    }
    const bool writes = std::strpbrk(mode, "wa") != nullptr;
    std::unique_ptr<FileImpl> impl(new (std::nothrow) FileImpl(stream, writes, keepOpen));
    if (!impl) {
        fclose(stream);
        Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructMemory);
    }
    return impl;
}

bool MayConstruct(const std::unique_ptr<FileImpl>& impl, bool hasArguments) {
    if (impl) return Fail(GXE_ERROR_ALREADY_CONSTRUCTED, kSiteConstructAgain);
    return hasArguments || Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteConstructNull);
}

}  // namespace

File::File() = default;
File::~File() = default;

bool File::Construct(const GxString* path, const char* mode, bool keepOpen) {
    if (!MayConstruct(impl_, path && mode)) return false;
    impl_ = OpenFile(Utf8Text(path), mode, keepOpen);
    return impl_ != nullptr;
}

bool File::Construct(const char* path, const char* mode) {
    if (!MayConstruct(impl_, path && mode)) return false;
    impl_ = OpenFile(Utf8Text(path), mode, false);
    return impl_ != nullptr;
}

FILE* File::Stream(int site) const {
    if (impl_ && impl_->stream) return impl_->stream;
    Fail(GXE_ERROR_NOT_CONSTRUCTED, static_cast<Site>(site));
    return nullptr;
}

size_t File::Read(void* data, size_t size, size_t count) {
    FILE* stream = Stream(kSiteRead);
    if (!stream) return 0;
    if (IsTransfer(data, size, count)) return fread(data, size, count, stream);
    Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteReadArgument);
    return 0;
}

size_t File::Write(const void* data, size_t size, size_t count) {
    FILE* stream = Stream(kSiteWrite);
    if (!stream) return 0;
    if (IsTransfer(data, size, count)) return fwrite(data, size, count, stream);
    Fail(GXE_ERROR_INVALID_ARGUMENT, kSiteWriteArgument);
    return 0;
}

int File::Seek(long offset, int origin) {
    FILE* stream = Stream(kSiteSeek);
    return stream ? fseek(stream, offset, origin) : -1;
}

long File::Tell() {
    FILE* stream = Stream(kSiteTell);
    return stream ? ftell(stream) : -1;
}

int File::Eof() {
    FILE* stream = Stream(kSiteEof);
    return stream ? feof(stream) : -1;
}

int File::Error() {
    FILE* stream = Stream(kSiteError);
    return stream ? ferror(stream) : -1;
}

FILE* File::GetFilePointer() {
    return Stream(kSiteFilePointer);
}

int File::GetFileDescriptor() {
    FILE* stream = Stream(kSiteFileDescriptor);
    return stream ? fileno(stream) : -1;
}

bool File::Close() {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED, kSiteClose);
    return impl_->Close() || Fail(GXE_ERROR_SYSTEM, kSiteCloseFlush);
}

int File::IsAccessible(const GxString* path, int mode) {
    return AccessPath(Utf8Text(path), mode);
}
int File::IsAccessible(const char* path, int mode) {
    return AccessPath(Utf8Text(path), mode);
}
int File::Unlink(const GxString* path) {
    return UnlinkPath(Utf8Text(path));
}
int File::Unlink(const char* path) {
    return UnlinkPath(Utf8Text(path));
}
int File::Rename(const GxString* oldPath, const GxString* newPath) {
    return RenamePath(Utf8Text(oldPath), Utf8Text(newPath));
}
int File::Rename(const char* oldPath, const char* newPath) {
    return RenamePath(Utf8Text(oldPath), Utf8Text(newPath));
}

}  // namespace GxFontEffect
