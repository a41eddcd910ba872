#include "batch/Batch.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>
#include <utility>

#include "base/Descriptor.h"
#include "batch/Manifest.h"
#include "batch/ManifestLine.h"
#include "scene/SceneError.h"

namespace gxtext {

namespace {

using GxFontEffect::Descriptor;
using std::chrono::milliseconds;

// Rows that are read ahead, and rows that may be through before one that is not: what a hung row
// may hold up.
constexpr size_t kRowsAhead = 64;
constexpr size_t kWindow = 4096;
constexpr milliseconds kProgressInterval{200};

// The rows' bytes.
class Input {
public:
    explicit Input(const std::string& file)
        : name_(file == "-" ? "standard input" : file),
          opened_(file == "-" ? dup(STDIN_FILENO) : open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
        struct stat status;
        if (!opened_ || fstat(opened_.get(), &status) != 0) fail("cannot open");
        if (S_ISDIR(status.st_mode)) {
            errno = EISDIR;
            fail("cannot read");
        }
        start_ = lseek(opened_.get(), 0, SEEK_CUR);
        isFile_ = S_ISREG(status.st_mode) && start_ >= 0;
    }

    int descriptor() const { return opened_.get(); }
    // Whether it can be read again.
    bool isFile() const { return isFile_; }
    void rewind() { lseek(opened_.get(), start_, SEEK_SET); }

    // What there is, at most a piece; empty at the end.
    std::string_view read() {
        while (true) {
            const ssize_t count = ::read(opened_.get(), chunk_, sizeof(chunk_));
            if (count >= 0) return {chunk_, static_cast<size_t>(count)};
            if (errno != EINTR) fail("cannot read");
        }
    }

    // A reader's error has the row; this adds the file.
    [[noreturn]] void failOf(const TextError& error) const {
        throw FileError(name_, error.place() + ": " + error.reason());
    }

private:
    [[noreturn]] void fail(const char* task) const {
        throw FileError(name_, std::string(task) + ": " + strerror(errno));
    }

    const std::string name_;
    const Descriptor opened_;
    bool isFile_ = false;
    off_t start_ = 0;
    char chunk_[65536];
};

class Run {
public:
    Run(const BatchOptions& options, const BatchEvents& events)
        : options_(options), events_(events), input_(options.input) {}

    BatchCounts run() {
        if (input_.isFile()) checkNames();
        if (!options_.manifest.empty()) {
            manifest_ = std::make_unique<Manifest>(options_.manifest, options_.keeps);
        }
        renderRows();
        if (manifest_) {
            if (isStopped_) {
                manifest_->flush();
            } else {
                manifest_->finish();
            }
        }
        if (events_.progress) events_.progress(counts_);
        return counts_;
    }

private:
    // A row on its way into the manifest.
    struct Entry {
        Row row;
        std::string output;
        std::optional<TitleAnswer> answer;
    };

    bool isOurs(const Row& row) const {
        return (row.number - 1) % options_.shard.count == options_.shard.index - 1;
    }

    // The row's output; its error where it has none.
    std::string outputOf(Row& row) const {
        if (row.error) return {};
        try {
            return options_.output.nameOf(row);
        } catch (const StyleError& error) {
            row.error = {error.problems().front().path, error.problems().front().reason};
            return {};
        }
    }

    void checkNames();
    void renderRows();
    void readMore();
    void takeRow(Row&& row);
    void submitRows(WorkerPool& pool);
    void takeAnswer(const WorkerAnswer& answer);
    void emitRows();
    void count(const Entry& entry);
    void reportFailure(const Entry& entry) const;

    const BatchOptions& options_;
    const BatchEvents& events_;
    Input input_;
    std::unique_ptr<Manifest> manifest_;
    std::unique_ptr<RowReader> reader_;
    OutputNames names_;  // of a stream, which cannot be looked through first
    std::deque<Entry> entries_;
    uint64_t firstTicket_ = 0;  // of entries_
    size_t submitted_ = 0;      // of entries_
    bool atEnd_ = false;
    bool isStopped_ = false;
    BatchCounts counts_;
};

void Run::checkNames() {
    const auto reader = RowReader::make(options_.format);
    OutputNames names;
    uint64_t rows = 0;
    const RowReader::Sink sink = [&](Row&& row) {
        rows += isOurs(row);
        const std::string output = outputOf(row);
        const auto other = row.error ? std::nullopt : names.add(output, row.number);
        if (!other) return;
        throw FileError(output, "the output of row " + std::to_string(*other) + " and of row " +
                                    std::to_string(row.number) + "; nothing was written");
    };
    try {
        for (std::string_view bytes = input_.read(); !bytes.empty(); bytes = input_.read()) {
            reader->feed(bytes, sink);
        }
        reader->finish(sink);
    } catch (const TextError& error) {
        input_.failOf(error);
    }
    counts_.expected = rows;
    input_.rewind();
}

void Run::renderRows() {
    reader_ = RowReader::make(options_.format);
    const auto start = [this]() -> WorkerPool::Work {
        if (manifest_) manifest_->release();
        const auto work = std::make_shared<TitleWork>(options_.title);
        return [work](const std::string& request) {
            return work->answer(TitleRequest::fromBytes(request)).toBytes();
        };
    };
    WorkerPool pool(options_.jobs, start, options_.limits);
    auto lastProgress = WorkerPool::Clock::now();
    while (!isStopped_ && (!atEnd_ || !entries_.empty())) {
        const size_t waiting = entries_.size() - submitted_;
        const bool wantsRows = !atEnd_ && waiting < kRowsAhead && entries_.size() < kWindow;
        const bool isReadable = pool.wait(wantsRows ? input_.descriptor() : -1, kProgressInterval,
                                          [this](WorkerAnswer&& answer) { takeAnswer(answer); });
        if (isReadable) readMore();
        submitRows(pool);
        emitRows();
        if (WorkerPool::Clock::now() - lastProgress < kProgressInterval) continue;
        lastProgress = WorkerPool::Clock::now();
        if (events_.progress) events_.progress(counts_);
    }
}

void Run::readMore() {
    const RowReader::Sink sink = [this](Row&& row) { takeRow(std::move(row)); };
    try {
        const std::string_view bytes = input_.read();
        if (bytes.empty()) {
            atEnd_ = true;
            reader_->finish(sink);
        } else {
            reader_->feed(bytes, sink);
        }
    } catch (const TextError& error) {
        input_.failOf(error);
    }
}

void Run::takeRow(Row&& row) {
    std::string output = outputOf(row);
    if (!input_.isFile() && !row.error) {
        if (const auto other = names_.add(output, row.number)) {
            row.error = {output, "the output of row " + std::to_string(*other) + " already"};
        }
    }
    if (isOurs(row)) entries_.push_back({std::move(row), std::move(output), std::nullopt});
}

void Run::submitRows(WorkerPool& pool) {
    for (; submitted_ < entries_.size(); submitted_++) {
        Entry& entry = entries_[submitted_];
        if (entry.row.error) {
            const Row& row = entry.row;
            entry.answer = {TitleState::kFailed,
                            errorLine(row.number, row.id, entry.output, *row.error)};
            continue;
        }
        if (!pool.hasRoom()) return;
        const TitleRequest request{std::move(entry.row), entry.output,
                                   manifest_ ? manifest_->known(entry.output) : std::string()};
        entry.row.number = request.row.number;
        entry.row.id = request.row.id;
        pool.submit(firstTicket_ + submitted_, request.toBytes());
    }
}

void Run::takeAnswer(const WorkerAnswer& answer) {
    Entry& entry = entries_[answer.ticket - firstTicket_];
    if (!answer.death) {
        entry.answer = TitleAnswer::fromBytes(answer.bytes);
        return;
    }
    entry.answer = {TitleState::kFailed, errorLine(entry.row.number, entry.row.id, entry.output,
                                                   {"the worker", *answer.death})};
}

void Run::emitRows() {
    while (!isStopped_ && !entries_.empty() && entries_.front().answer) {
        const Entry& entry = entries_.front();
        if (manifest_) manifest_->append(entry.answer->line);
        count(entry);
        isStopped_ = options_.failFast && entry.answer->state == TitleState::kFailed;
        entries_.pop_front();
        firstTicket_++;
        submitted_--;
    }
    if (manifest_) manifest_->flush();
}

void Run::count(const Entry& entry) {
    counts_.rows++;
    const TitleState state = entry.answer->state;
    const bool isWritten = state == TitleState::kWritten || state == TitleState::kMissing;
    counts_.written += isWritten;
    counts_.unchanged += state == TitleState::kUnchanged;
    if (state == TitleState::kMissing && counts_.missing++ == 0) {
        counts_.firstMissing = entry.row.number;
    }
    if (state != TitleState::kFailed) return;
    counts_.failed++;
    if (events_.failed) reportFailure(entry);
}

void Run::reportFailure(const Entry& entry) const {
    const auto line = nlohmann::ordered_json::parse(entry.answer->line);
    events_.failed(entry.row.number, {line["error"]["place"], line["error"]["reason"]});
}

}  // namespace

BatchCounts runBatch(const BatchOptions& options, const BatchEvents& events) {
    return Run(options, events).run();
}

}  // namespace gxtext
