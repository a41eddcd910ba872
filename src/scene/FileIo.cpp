#include "scene/FileIo.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

#include "base/Descriptor.h"
#include "scene/SceneError.h"

namespace gxtext {

namespace {

using GxFontEffect::Descriptor;

[[noreturn]] void failWith(const std::string& file, const char* task, int code) {
    throw FileError(file, std::string(task) + ": " + strerror(code));
}

// After a failed transfer: whether to try again, once the descriptor is ready.
bool mayTryAgain(int descriptor, short event) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN) return false;
    pollfd waited{descriptor, event, 0};
    poll(&waited, 1, -1);
    return true;
}

// The last of a chain of symbolic links, whether it exists or not.
std::string targetOf(const std::string& file) {
    constexpr int kMaxLinks = 40;  // as many as the system follows
    std::filesystem::path path = file;
    for (int i = 0; i < kMaxLinks; i++) {
        std::error_code isNoLink;
        const std::filesystem::path next = std::filesystem::read_symlink(path, isNoLink);
        if (isNoLink || isDescriptorPath(path.string())) return path.string();
        path = path.parent_path() / next;
    }
    failWith(file, "cannot create", ELOOP);
}

// Signals that arrive while it lives are delivered at its end.
class SignalsWait {
public:
    SignalsWait() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;
    ~SignalsWait() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_;
};

// A new file in the folder of another that takes its place or goes away again. It gets a name only
// to be moved, or at once where a file needs one.
class NewFile {
public:
    NewFile(const std::string& target, bool isNamed)
        : target_(target),
          folder_((std::filesystem::path(target).parent_path() / "").string()),
          file_(isNamed ? createNamed() : createUnnamed()) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!name_.empty()) unlink(name_.c_str());
    }

    // Negative when it could not be created, with errno.
    int descriptor() const { return file_.get(); }

    // False with errno; the target is as it was then.
    bool moveToTarget() {
        const SignalsWait wait;
        if (name_.empty() && linkAs(target_.c_str()) == 0) return true;
        if (name_.empty() && !link()) return false;
        if (rename(name_.c_str(), target_.c_str()) != 0) return false;
        name_.clear();
        return true;
    }

private:
    int createUnnamed() const {
        const char* folder = folder_.empty() ? "." : folder_.c_str();
        return open(folder, O_TMPFILE | O_WRONLY | O_CLOEXEC, kMode);
    }

    int createNamed() {
        return underNewName([](const char* name) {
            return open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
        });
    }

    int linkAs(const char* name) const {
        const std::string path = "/proc/self/fd/" + std::to_string(descriptor());
        return linkat(AT_FDCWD, path.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW);
    }

    bool link() {
        return underNewName([this](const char* name) { return linkAs(name); }) == 0;
    }

    // Negative, with errno, when `create` fails for another reason than that the name is taken.
    template <typename Create>
    int underNewName(Create create) {
        static std::atomic<unsigned> counter{0};
        while (true) {
            const std::string name = folder_ + ".gxtext-" + std::to_string(getpid()) + "-" +
                                     std::to_string(counter.fetch_add(1));
            const int result = create(name.c_str());
            if (result >= 0) name_ = name;
            if (result >= 0 || errno != EEXIST) return result;
        }
    }

    static constexpr mode_t kMode = 0666;  // less the process's mask

    const std::string target_;
    const std::string folder_;  // empty, or with a slash at its end
    std::string name_;          // what is to be removed; empty while there is none
    const Descriptor file_;
};

// The owner and permissions of the old file; never more than it allowed to its group.
void inherit(int file, const struct stat& old) {
    mode_t mode = old.st_mode & 0777;
    if (fchown(file, old.st_uid, old.st_gid) != 0 &&
        fchown(file, static_cast<uid_t>(-1), old.st_gid) != 0) {
        mode &= ~mode_t{070} | (mode & 07) << 3;
    }
    fchmod(file, mode);
}

void replaceFile(const std::string& file, const std::string& target, const struct stat* old,
                 std::string_view bytes, Flush flush) {
    for (const bool isNamed : {false, true}) {
        std::optional<SignalsWait> wait;
        if (isNamed) wait.emplace();
        NewFile fresh(target, isNamed);
        if (fresh.descriptor() < 0) {
            if (!isNamed) continue;
            failWith(file, "cannot create", errno);
        }
        if (old) inherit(fresh.descriptor(), *old);
        writeDescriptor(fresh.descriptor(), file, bytes);
        // EINVAL: a file system that has nothing to flush.
        if (flush == Flush::kNow && fsync(fresh.descriptor()) != 0 && errno != EINVAL) {
            failWith(file, "cannot write to", errno);
        }
        if (fresh.moveToTarget()) return;
        // Some systems refuse links.
        if (isNamed) failWith(file, "cannot replace", errno);
    }
}

}  // namespace

std::string readFile(const std::string& file, size_t limit) {
    // Not blocking: opening a pipe would wait for its writer.
    const Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status;
    if (!opened || fstat(opened.get(), &status) != 0) failWith(file, "cannot open", errno);
    if (S_ISDIR(status.st_mode)) failWith(file, "cannot read", EISDIR);
    if (!S_ISREG(status.st_mode)) throw FileError(file, "cannot read: not a regular file");
    return readDescriptor(opened.get(), file, limit);
}

void writeFile(const std::string& file, std::string_view bytes, Flush flush) {
    const std::string target = targetOf(file);
    const Descriptor old(open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    struct stat status;
    if (!old) {
        if (errno != ENOENT) failWith(file, "cannot create", errno);
        return replaceFile(file, target, nullptr, bytes, flush);
    }
    if (fstat(old.get(), &status) != 0) failWith(file, "cannot create", errno);
    if (!S_ISREG(status.st_mode)) return writeDescriptor(old.get(), file, bytes);
    if (!isDescriptorPath(target)) return replaceFile(file, target, &status, bytes, flush);
    if (ftruncate(old.get(), 0) != 0) failWith(file, "cannot write to", errno);
    writeDescriptor(old.get(), file, bytes);
}

void makeFolderOf(const std::string& file) {
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    std::error_code error;
    if (!folder.empty()) std::filesystem::create_directories(folder, error);
    if (error) throw FileError(folder.string(), "cannot create: " + error.message());
}

std::string readDescriptor(int descriptor, const std::string& name, size_t limit) {
    std::string bytes;
    char chunk[65536];
    while (const ssize_t count = read(descriptor, chunk, sizeof(chunk))) {
        if (count < 0) {
            if (!mayTryAgain(descriptor, POLLIN)) failWith(name, "cannot read", errno);
            continue;
        }
        bytes.append(chunk, static_cast<size_t>(count));
        if (bytes.size() > limit) {
            throw FileError(name, "too long", "up to " + std::to_string(limit) + " bytes");
        }
    }
    return bytes;
}

void writeDescriptor(int descriptor, const std::string& name, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<size_t>(count));
        } else if (!mayTryAgain(descriptor, POLLOUT)) {
            failWith(name, "cannot write to", errno);
        }
    }
    // Network file systems tell of a full disk when a file is closed.
    const int copy = dup(descriptor);
    if (copy >= 0 && close(copy) != 0) failWith(name, "cannot write to", errno);
}

bool isDescriptorPath(const std::string& file) {
    return file == "/dev/stdin" || file == "/dev/stdout" || file == "/dev/stderr" ||
           file.starts_with("/dev/fd/") || file.starts_with("/proc/");
}

}  // namespace gxtext
